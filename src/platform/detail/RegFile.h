#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <variant>

#include "platform/detail/FileText.h"

namespace platform {

/// One registry export in text form, read and edited without a file system.
///
/// The lines are kept as they were read, so that a change touches its own line only. Of the
/// values, those below HKEY_LOCAL_MACHINE are understood; a later line overrides an earlier one,
/// and delete markers take away what stands before them.
class RegFile {
public:
    /// A string, a 32-bit number, or a value of a kind that this program does not read.
    using Data = std::variant<std::monostate, QString, std::uint32_t>;

    /// A line that could not be understood and was passed over.
    struct Problem {
        qsizetype line = 0;  // from 1
        QString text;
    };

    /// An empty file in the form in which new files are written.
    RegFile();
    [[nodiscard]] static RegFile Parse(const QByteArray& bytes);

    /// nullptr when there is no such value. Names compare without case; the default value of a
    /// key has the empty name.
    [[nodiscard]] const Data* Find(QStringView key, QStringView valueName) const;
    void Set(QStringView key, QStringView valueName, const Data& data);

    [[nodiscard]] QByteArray Serialize() const;
    [[nodiscard]] const QList<Problem>& Problems() const noexcept { return problems_; }

private:
    struct Entry {
        Data data;
        qsizetype firstLine = 0;
        qsizetype lineCount = 1;
    };
    struct Key {
        QHash<QString, Entry> values;  // by folded name
        qsizetype lastLine = 0;        // behind it a new value is put
    };

    void SplitLines(const QString& text);
    void Interpret();
    void OpenKey(QStringView header, qsizetype line, QString& current);
    qsizetype ReadValue(const QString& current, qsizetype line);
    [[nodiscard]] std::optional<Data> ParseData(QStringView text) const;
    void Report(qsizetype line);

    QList<QString> lines_;  // with their carriage return where they have one
    bool carriageReturns_ = false;
    bool lastLineEnded_ = true;
    FileText form_;                // of the file, without its text, which stands in the lines
    bool ansiHex_ = false;         // the older export form: hex texts are bytes of the code page
    std::map<QString, Key> keys_;  // by folded name, without the hive
    QList<Problem> problems_;
};

}  // namespace platform
