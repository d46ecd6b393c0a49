#pragma once

#include <optional>
#include <QHash>
#include <QList>
#include <QString>

#include "platform/detail/FileText.h"
#include "platform/Fold.h"
#include "platform/ProfileFile.h"

namespace platform {

/// The text of one profile file, read and edited without a file system.
///
/// A line is a section header, "key=value", or something that is kept and passed over. Of several
/// sections of one name the first counts, of several keys of one name in a section likewise. All
/// work is linear in the size of the text.
class ProfileText {
public:
    ProfileText() = default;
    [[nodiscard]] static ProfileText Parse(const QByteArray& bytes);

    /// The value without the quotes that may enclose it; nullopt when there is none.
    [[nodiscard]] std::optional<QString> Find(QStringView section, QStringView key);

    /// Gives keys their values: one that is there in its line, a new one at the end of its
    /// section, a new section at the end of the text. Returns whether anything has changed.
    /// REQUIRES: usable names, see ProfileFile.
    bool Set(const QString& section, const QList<ProfileEntry>& entries);

    [[nodiscard]] QByteArray Serialize() const { return file_.Encode(); }

private:
    /// Part of the text.
    struct Span {
        qsizetype begin = 0;
        qsizetype length = 0;
    };
    /// A key without capitals; a view of the text, to spare large files a copy of each.
    struct Name {
        QStringView text;
        bool operator==(const Name& other) const { return SameName(text, other.text); }
        friend size_t qHash(const Name& name, size_t start) {
            return qHash(FoldName(name.text), start);
        }
    };
    /// One section, as found by the last look-up.
    struct Section {
        bool exists = false;
        qsizetype end = 0;  // behind its last line that is not blank, line end included
        QHash<Name, Span> values;
    };

    void Open(QStringView name);
    [[nodiscard]] QStringView Text(Span span) const {
        return QStringView(file_.text).sliced(span.begin, span.length);
    }

    FileText file_;
    std::optional<QString> openName_;  // of `open_`
    Section open_;
};

}  // namespace platform
