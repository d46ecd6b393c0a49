#pragma once

#include <QString>
#include <QStringList>

class QSettings;

namespace studio {

/// The projects that were opened last, the latest first: native absolute paths of project files,
/// or names of registered projects. Every change is stored at once.
class RecentProjects {
public:
    static constexpr int kMost = 10;

    /// `store` is borrowed and outlives the list. Null: the list is kept for this run only.
    explicit RecentProjects(QSettings* store);

    [[nodiscard]] const QStringList& Items() const noexcept { return items_; }
    /// Puts `project` in front.
    void Add(const QString& project);
    void Clear();

private:
    void Store();

    QSettings* store_;
    QStringList items_;
};

}  // namespace studio
