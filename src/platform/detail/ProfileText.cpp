#include "platform/detail/ProfileText.h"

#include <algorithm>

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

bool IsBlank(QChar c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\v' || c == u'\f';
}

/// Blanks as the stations know them: a no-break space belongs to the text.
QStringView Trimmed(QStringView text) {
    while (!text.isEmpty() && IsBlank(text.front())) text = text.sliced(1);
    while (!text.isEmpty() && IsBlank(text.back())) text.chop(1);
    return text;
}

bool IsQuoted(QStringView text) {
    return text.size() >= 2 && text.front() == text.back() &&
           (text.front() == u'"' || text.front() == u'\'');
}

QStringView WithoutQuotes(QStringView text) {
    return IsQuoted(text) ? text.sliced(1, text.size() - 2) : text;
}

/// The form of a value that is read back as the same value. A line is all there is for one: line
/// ends become blanks.
QString Written(QString value) {
    for (QChar& c : value) {
        if (c == u'\n' || c == u'\r' || c == QChar(0)) c = u' ';
    }
    if (IsQuoted(value) || Trimmed(value).size() != value.size()) return u'"' + value + u'"';
    return value;
}

struct Edit {
    qsizetype begin = 0;
    qsizetype length = 0;
    QString replacement;
};

/// `edits` in any order, not overlapping; those at one place in the order given.
QString Edited(const QString& text, QList<Edit> edits) {
    std::stable_sort(edits.begin(), edits.end(),
                     [](const Edit& a, const Edit& b) { return a.begin < b.begin; });
    QString result;
    result.reserve(text.size() + 64 * edits.size());
    qsizetype done = 0;
    for (const Edit& edit : edits) {
        result += QStringView(text).sliced(done, edit.begin - done);
        result += edit.replacement;
        done = edit.begin + edit.length;
    }
    result += QStringView(text).sliced(done);
    return result;
}

}  // namespace

ProfileText ProfileText::Parse(const QByteArray& bytes) {
    ProfileText text;
    text.file_ = FileText::Decode(bytes, FileText::WithoutMark::Utf8OrAnsi);
    return text;
}

void ProfileText::Open(QStringView name) {
    if (openName_ && SameName(*openName_, name)) return;
    openName_ = name.toString();
    open_ = Section();
    const QStringView text(file_.text);
    qsizetype begin = 0;
    while (begin < text.size()) {
        const qsizetype lineEnd = text.indexOf(u'\n', begin);
        const qsizetype next = lineEnd < 0 ? text.size() : lineEnd + 1;
        const QStringView line =
            Trimmed(text.sliced(begin, (lineEnd < 0 ? text.size() : lineEnd) - begin));
        begin = next;
        if (line.isEmpty()) continue;
        const qsizetype bracket = line.front() == u'[' ? line.indexOf(u']') : -1;
        if (bracket > 0) {
            if (open_.exists) return;
            open_.exists = SameName(Trimmed(line.sliced(1, bracket - 1)), name);
        }
        // A comment that stands at the end of a section may well introduce the next one.
        if (!open_.exists || line.front() == u';') continue;
        open_.end = next;
        const qsizetype equals = line.indexOf(u'=');
        if (bracket > 0 || equals < 1) continue;
        const Name key{Trimmed(line.first(equals))};
        if (open_.values.contains(key)) continue;
        const QStringView value = Trimmed(line.sliced(equals + 1));
        const QStringView place = value.isEmpty() ? line.sliced(equals + 1, 0) : value;
        open_.values.insert(key, Span{place.data() - text.data(), place.size()});
    }
}

std::optional<QString> ProfileText::Find(QStringView section, QStringView key) {
    Open(section);
    const auto found = open_.values.constFind(Name{key});
    if (found == open_.values.cend()) return std::nullopt;
    return WithoutQuotes(Text(*found)).toString();
}

bool ProfileText::Set(const QString& section, const QList<ProfileEntry>& entries) {
    Open(section);
    QHash<Name, qsizetype> last;  // an entry given twice counts as given last
    for (qsizetype i = 0; i < entries.size(); ++i) last.insert(Name{entries[i].key}, i);

    const QString lineEnd =
        file_.text.contains(u'\n') && !file_.text.contains(u"\r\n") ? u"\n"_s : u"\r\n"_s;
    QList<Edit> edits;
    QString added;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const ProfileEntry& entry = entries[i];
        if (last.value(Name{entry.key}) != i) continue;
        const QString written = Written(entry.text);
        const auto found = open_.values.constFind(Name{entry.key});
        if (found == open_.values.cend()) {
            added += entry.key + u'=' + written + lineEnd;
        } else if (WithoutQuotes(Text(*found)) != WithoutQuotes(written)) {
            edits += Edit{found->begin, found->length, written};
        }
    }
    if (!added.isEmpty()) {
        QString& text = file_.text;
        const qsizetype place = open_.exists ? open_.end : text.size();
        if (!open_.exists) {
            added.prepend(u'[' + section + u']' + lineEnd);
            if (!text.isEmpty()) added.prepend(lineEnd);
        }
        if (place > 0 && text[place - 1] != u'\n') added.prepend(lineEnd);
        edits += Edit{place, 0, added};
    }
    if (edits.isEmpty()) return false;
    open_ = Section();
    openName_.reset();
    file_.text = Edited(file_.text, std::move(edits));
    return true;
}

}  // namespace platform
