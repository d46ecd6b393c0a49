#pragma once

#include <array>
#include <optional>
#include <QList>
#include <QString>
#include <QStringList>

#include "project/Rows.h"

namespace templates {

enum class Kind { Archive, Trend };

struct Template {
    QString name;
    project::Values settings;
};

/// The templates of a project: a JSON file beside it, with its name and "-templates" behind, which
/// goes with the project and can be joined by version control. It is read anew for each change,
/// since another studio may have written it, and takes the old one's place as a whole.
class TemplateFile {
public:
    /// `project` is the native path of its file.
    explicit TemplateFile(const QString& project);

    /// False: there is a file, and it holds no templates. It is not written over then.
    [[nodiscard]] bool IsReadable() const { return isReadable_; }
    [[nodiscard]] const QString& Path() const { return file_; }
    [[nodiscard]] QStringList Names(Kind kind) const;
    [[nodiscard]] std::optional<Template> Find(Kind kind, const QString& name) const;

    // Empty when it has been written, else why not; then all is as it was.

    /// In the place of the one of its name, or behind the others.
    [[nodiscard]] QString Keep(Kind kind, const Template& kept);
    /// One that bears the new name goes.
    [[nodiscard]] QString Rename(Kind kind, const QString& name, const QString& newName);
    [[nodiscard]] QString Remove(Kind kind, const QString& name);

    /// Reads the file as it is now.
    void Read();

private:
    using Templates = std::array<QList<Template>, 2>;  // by kind
    [[nodiscard]] static QList<Template>& Of(Templates& all, Kind kind) {
        return all[kind == Kind::Archive ? 0 : 1];
    }
    [[nodiscard]] QString Write(Templates all);

    QString file_;
    Templates all_;
    bool isReadable_ = true;
};

}  // namespace templates
