#include "platform/detail/RegFile.h"

#include <QStringDecoder>
#include <QStringEncoder>
#include <QtEndian>

#include "platform/Fold.h"
#include "platform/Windows1252.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kHeader = u"Windows Registry Editor Version 5.00";
constexpr QStringView kOldHeader = u"REGEDIT4";
constexpr QStringView kHive = u"HKEY_LOCAL_MACHINE";
constexpr QStringView kShortHive = u"HKLM";

/// The key of a path with its hive; nullopt for another hive.
std::optional<QString> WithoutHive(QStringView path) {
    for (const QStringView hive : {kHive, kShortHive}) {
        if (!path.startsWith(hive, Qt::CaseInsensitive)) continue;
        const QStringView rest = path.mid(hive.size());
        if (rest.isEmpty()) return QString();
        if (rest.front() == u'\\') return FoldName(rest.mid(1));
    }
    return std::nullopt;
}

/// Reads a quoted text at the start of `text` and takes it away from there.
std::optional<QString> TakeQuoted(QStringView& text) {
    if (!text.startsWith(u'"')) return std::nullopt;
    QString result;
    for (qsizetype i = 1; i < text.size(); ++i) {
        QChar c = text[i];
        if (c == u'"') {
            text = text.mid(i + 1);
            return result;
        }
        if (c == u'\\' && i + 1 < text.size()) {
            const QChar escaped = text[i + 1];
            // A single backslash is left by people who type such files by hand.
            if (escaped == u'\\' || escaped == u'"') {
                c = escaped;
                ++i;
            }
        }
        result += c;
    }
    return std::nullopt;
}

QString Quoted(QStringView text) {
    QString result = u"\""_s;
    for (const QChar c : text) {
        if (c == u'\\' || c == u'"') result += u'\\';
        result += c;
    }
    return result + u'"';
}

/// A text with line ends would break its line; such texts are exported as bytes.
QString Written(const QString& text, bool ansi) {
    if (!text.contains(u'\n')) return Quoted(text);
    QByteArray bytes;
    if (ansi) {
        bytes = ToWindows1252(text).value_or(text.toLatin1()) + '\0';
    } else {
        bytes = QByteArray(QStringEncoder(QStringEncoder::Utf16LE)(text + QChar(0)));
    }
    return u"hex(1):"_s + QString::fromLatin1(bytes.toHex(','));
}

bool NothingButComment(QStringView rest) {
    const QStringView trimmed = rest.trimmed();
    return trimmed.isEmpty() || trimmed.startsWith(u';');
}

std::optional<QByteArray> HexBytes(QStringView list) {
    QByteArray bytes;
    for (const QStringView item : list.split(u',')) {
        const QStringView digits = item.trimmed();
        if (digits.isEmpty()) continue;
        bool ok = false;
        const uint byte = digits.toUInt(&ok, 16);
        if (!ok || byte > 0xFF) return std::nullopt;
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

QString TextOfBytes(const QByteArray& bytes, bool ansi) {
    QString text;
    if (ansi) {
        text = FromWindows1252(bytes);
    } else {
        text = QStringDecoder(QStringDecoder::Utf16LE)(bytes);
    }
    const qsizetype end = text.indexOf(QChar(0));
    return end < 0 ? text : text.left(end);
}

}  // namespace

RegFile::RegFile() : lines_{kHeader.toString() + u'\r'}, carriageReturns_(true) {
    form_.encoding = FileText::Encoding::Utf8;
}

RegFile RegFile::Parse(const QByteArray& bytes) {
    RegFile file;
    if (bytes.isEmpty()) return file;
    const bool old = bytes.startsWith("REGEDIT4");
    file.form_ = FileText::Decode(
        bytes, old ? FileText::WithoutMark::Ansi : FileText::WithoutMark::Utf8OrAnsi);
    file.lines_.clear();
    file.SplitLines(file.form_.text);
    // What is all ASCII may become either; the newer form never was in the code page.
    const bool ascii = file.form_.encoding == FileText::Encoding::Ansi && !old &&
                       file.form_.text.toUtf8().size() == file.form_.text.size();
    if (ascii) file.form_.encoding = FileText::Encoding::Utf8;
    file.form_.text.clear();
    file.Interpret();
    return file;
}

void RegFile::SplitLines(const QString& text) {
    lines_ = text.split(u'\n');
    lastLineEnded_ = lines_.last().isEmpty();
    if (lastLineEnded_) lines_.removeLast();
    carriageReturns_ = text.contains(u"\r\n"_s);
}

void RegFile::Interpret() {
    QString current;  // null outside of the hive
    bool headerExpected = true;
    qsizetype i = 0;
    while (i < lines_.size()) {
        const QStringView line = QStringView(lines_[i]).trimmed();
        if (line.isEmpty() || line.startsWith(u';')) {
            ++i;
            continue;
        }
        if (headerExpected) {
            headerExpected = false;
            ansiHex_ = line == kOldHeader;
            if (ansiHex_ || line == kHeader) {
                ++i;
                continue;
            }
            Report(i);  // read on: the values may be good all the same
        }
        if (line.startsWith(u'[')) {
            OpenKey(line, i, current);
            ++i;
        } else {
            i += ReadValue(current, i);
        }
    }
}

void RegFile::OpenKey(QStringView header, qsizetype line, QString& current) {
    current = QString();
    const qsizetype end = header.lastIndexOf(u']');
    if (end < 0 || !NothingButComment(header.mid(end + 1))) {
        Report(line);
        return;
    }
    QStringView path = header.mid(1, end - 1);
    const bool remove = path.startsWith(u'-');
    if (remove) path = path.mid(1);
    const std::optional<QString> key = WithoutHive(path);
    if (!key) return;
    if (remove) {
        keys_.erase(*key);
        const QString below = *key + u'\\';
        auto last = keys_.lower_bound(below);
        const auto first = last;
        while (last != keys_.end() && last->first.startsWith(below)) ++last;
        keys_.erase(first, last);
        return;
    }
    current = *key;
    if (current.isNull()) current = u""_s;
    keys_[current].lastLine = line;
}

/// Reads the value that begins in `line` and returns how many lines it has.
qsizetype RegFile::ReadValue(const QString& current, qsizetype line) {
    QString text = lines_[line].trimmed();
    qsizetype count = 1;
    // Only number lists are continued; a text may well end in a backslash.
    if (text.contains(u"=hex"_s, Qt::CaseInsensitive)) {
        QStringView part = QStringView(lines_[line]).trimmed();
        while (part.endsWith(u'\\')) {
            text.chop(1);
            if (line + count == lines_.size()) break;
            part = QStringView(lines_[line + count]).trimmed();
            text += part;
            ++count;
        }
    }
    QStringView rest(text);
    std::optional<QString> name;
    if (rest.startsWith(u'@')) {
        name = QString();
        rest = rest.mid(1);
    } else {
        name = TakeQuoted(rest);
    }
    rest = rest.trimmed();
    if (!name || !rest.startsWith(u'=')) {
        Report(line);
        return count;
    }
    rest = rest.mid(1).trimmed();

    Key* key = current.isNull() ? nullptr : &keys_[current];
    if (rest.startsWith(u'-') && NothingButComment(rest.mid(1))) {
        if (key != nullptr) key->values.remove(FoldName(*name));
    } else if (const std::optional<Data> data = ParseData(rest)) {
        if (key != nullptr) key->values.insert(FoldName(*name), Entry{*data, line, count});
    } else {
        Report(line);
    }
    if (key != nullptr) key->lastLine = line + count - 1;
    return count;
}

std::optional<RegFile::Data> RegFile::ParseData(QStringView text) const {
    if (text.startsWith(u'"')) {
        std::optional<QString> value = TakeQuoted(text);
        if (!value || !NothingButComment(text)) return std::nullopt;
        return Data(*value);
    }
    const qsizetype colon = text.indexOf(u':');
    if (colon < 0) return std::nullopt;
    const QString kind = text.left(colon).toString().toLower();
    QStringView digits = text.mid(colon + 1);
    if (const qsizetype comment = digits.indexOf(u';'); comment >= 0) digits.truncate(comment);
    digits = digits.trimmed();
    if (kind == u"dword"_s) {
        bool ok = false;
        const uint number = digits.toUInt(&ok, 16);
        if (!ok || digits.size() > 8) return std::nullopt;
        return Data(std::uint32_t{number});
    }
    if (!kind.startsWith(u"hex"_s)) return std::nullopt;
    const std::optional<QByteArray> bytes = HexBytes(digits);
    if (!bytes) return std::nullopt;
    if (kind == u"hex(4)"_s && bytes->size() == 4) {
        return Data(qFromLittleEndian<std::uint32_t>(bytes->constData()));
    }
    if (kind == u"hex(1)"_s || kind == u"hex(2)"_s) return Data(TextOfBytes(*bytes, ansiHex_));
    return Data();
}

void RegFile::Report(qsizetype line) {
    problems_ += Problem{line + 1, lines_[line].trimmed()};
}

const RegFile::Data* RegFile::Find(QStringView key, QStringView valueName) const {
    const auto found = keys_.find(FoldName(key));
    if (found == keys_.cend()) return nullptr;
    const auto value = found->second.values.constFind(FoldName(valueName));
    return value == found->second.values.cend() ? nullptr : &value->data;
}

void RegFile::Set(QStringView key, QStringView valueName, const Data& data) {
    QString line = (valueName.isEmpty() ? u"@"_s : Quoted(valueName)) + u'=';
    if (const auto* number = std::get_if<std::uint32_t>(&data)) {
        line += u"dword:%1"_s.arg(*number, 8, 16, QChar(u'0'));
    } else if (const auto* text = std::get_if<QString>(&data)) {
        line += Written(*text, ansiHex_);
    }

    const QString end = carriageReturns_ ? u"\r"_s : QString();
    line += end;
    if (!lines_.isEmpty() && !lastLineEnded_) lines_.last() += end;
    lastLineEnded_ = true;

    const auto found = keys_.find(FoldName(key));
    if (found == keys_.cend()) {
        if (!lines_.isEmpty() && !lines_.last().trimmed().isEmpty()) lines_ += end;
        lines_ += u"[%1\\%2]"_s.arg(kHive, key) + end;
        lines_ += line;
    } else if (const auto value = found->second.values.constFind(FoldName(valueName));
               value != found->second.values.cend()) {
        const Entry& old = *value;
        lines_.remove(old.firstLine, old.lineCount);
        lines_.insert(old.firstLine, line);
    } else {
        const qsizetype place = found->second.lastLine + 1;
        lines_.insert(place, line);
        // A list of numbers that was left unfinished would take the new line for its rest.
        if (lines_[place - 1].trimmed().endsWith(u'\\')) lines_.insert(place, end);
    }
    // Line numbers have moved.
    keys_.clear();
    problems_.clear();
    Interpret();
}

QByteArray RegFile::Serialize() const {
    QString text = lines_.join(u'\n');
    if (lastLineEnded_ && !lines_.isEmpty()) text += u'\n';
    FileText file = form_;
    file.text = text;
    return file.Encode();
}

}  // namespace platform
