#include "help/detail/PageInserts.h"

#include <algorithm>
#include <optional>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QStringList>
#include <utility>

#include "commandset/CommandSet.h"
#include "texts/Fill.h"
#include "texts/Language.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace help {

using namespace Qt::Literals::StringLiterals;
using MResources::TextTable;

namespace {

using Inserted = std::optional<QString>;

constexpr std::pair<QLatin1StringView, commandset::Place> kPlaces[] = {
    {"tree"_L1, commandset::Place::Tree},
    {"archives"_L1, commandset::Place::Archives},
    {"trends"_L1, commandset::Place::Trends},
    {"cells"_L1, commandset::Place::Cells},
};

QString Row(const QString& left, const QString& right) {
    return u"<tr><td><b>%1</b></td><td>%2</td></tr>\n"_s.arg(left.toHtmlEscaped(),
                                                             right.toHtmlEscaped());
}

Inserted KeyRows(QStringView name, const TextTable& texts) {
    for (const auto& [known, place] : kPlaces) {
        if (name != known) continue;
        QString rows;
        for (const commandset::KeyLine& line : commandset::KeyLines(place, texts)) {
            rows += Row(line.keys, line.description);
        }
        return rows;
    }
    return std::nullopt;
}

/// With dots for what a text is about.
QString WithDots(QString text) {
    static const QRegularExpression kPlaceholders(u"<\\w+>"_s);
    return text.replace(kPlaceholders, u"…"_s).simplified();
}

/// As a label reads: without access key and colon, without what behind many blanks is a key, and
/// without what it says of a step only.
QString Label(int number, const TextTable& texts) {
    QString text = texts.GetText(number).remove(u'&');
    if (text.contains(u"<step>"_s)) text = texts::Fill(text, {{u"step", QString()}});
    text = WithDots(text.left(text.indexOf(u"  ")));
    if (text.endsWith(u':')) text.chop(1);
    return text;
}

Inserted TextOf(QStringView key, const TextTable& texts) {
    const int number = texts::NumberOf(key.toString());
    if (number == 0) return std::nullopt;
    return u"<b>"_s + Label(number, texts).toHtmlEscaped() + u"</b>"_s;
}

Inserted CommandOf(QStringView name, const TextTable& texts) {
    for (const commandset::Command& command : commandset::Commands()) {
        if (command.name != name) continue;
        const int number = command.text != 0 ? command.text : MResourceTable::kTextHelp;
        QStringList keys;
        for (const commandset::Key& key : command.keys) {
            keys += commandset::KeyText(key.keys, texts);
        }
        keys.removeDuplicates();
        QString text = u"<b>"_s + Label(number, texts).toHtmlEscaped() + u"</b>"_s;
        if (!keys.isEmpty()) text += u"<br/>"_s + keys.join(u", "_s).toHtmlEscaped();
        return text;
    }
    return std::nullopt;
}

/// The id of a rule, after what texts call it: "name-empty" of "NameEmpty".
QString RuleId(QStringView name) {
    QString id;
    for (const QChar c : name) {
        if (c.isUpper() && !id.isEmpty()) id += u'-';
        id += c.toLower();
    }
    return id;
}

Inserted RuleRow(QStringView name, const TextTable& texts) {
    const int meaning = texts::NumberOf(u"RuleMeaning."_s + name.toString());
    const int advice = texts::NumberOf(u"RuleAdvice."_s + name.toString());
    if (meaning == 0 || advice == 0) return std::nullopt;
    return Row(RuleId(name), texts.GetText(meaning) + u' ' + texts.GetText(advice));
}

/// Numbers of the texts whose keys begin with `beginning`, in the order of the table.
QList<int> NumbersOf(const QString& beginning) {
    QList<int> numbers;
    const QMetaObject& names = MResourceTable::staticMetaObject;
    for (int i = 0; i < names.enumeratorCount(); ++i) {
        const QMetaEnum list = names.enumerator(i);
        const QString scope = list.isScoped() ? QLatin1StringView(list.name()) + u'.' : QString();
        const QString wanted = list.isScoped() ? beginning : u"kText"_s + beginning;
        for (int entry = 0; entry < list.keyCount(); ++entry) {
            const QString key = scope + QLatin1StringView(list.key(entry));
            if (key.startsWith(wanted)) numbers += list.value(entry);
        }
    }
    return numbers;
}

/// The text, with the given key where it names one that helps.
QString WithGivenKey(int number, const TextTable& texts) {
    using commandset::Id;
    constexpr std::pair<int, Id> kHelping[] = {
        {MResourceTable::kTextHintNewArchive, Id::NewArchive},
        {MResourceTable::kTextNoArchives, Id::NewArchive},
        {MResourceTable::kTextHintNoTrend, Id::NewTrend},
        {MResourceTable::kTextNoTrends, Id::NewTrend},
    };
    for (const auto& [text, id] : kHelping) {
        if (text != number) continue;
        const QKeyCombination key = commandset::CommandOf(id).keys.front().keys;
        return texts.GetText(number, {{u"key", commandset::KeyText(key, texts)}});
    }
    return texts.GetText(number);
}

/// A message; what happened is set apart from what can be done.
QString MessageItem(const QString& message) {
    const QString text = WithDots(message).remove(u'[').remove(u']');
    const qsizetype end = text.indexOf(u". ");
    const QString first = text.left(end < 0 ? text.size() : end + 1);
    return u"<li><b>%1</b>%2</li>\n"_s.arg(first.toHtmlEscaped(),
                                           text.mid(first.size()).toHtmlEscaped());
}

Inserted MessageItems(QStringView keys, const TextTable& texts) {
    const bool isBeginning = keys.endsWith(u'*');
    const QList<int> numbers = isBeginning ? NumbersOf(keys.chopped(1).toString())
                                           : QList<int>{texts::NumberOf(keys.toString())};
    if (numbers.isEmpty() || numbers.contains(0)) return std::nullopt;
    QString items;
    for (const int number : numbers) items += MessageItem(WithGivenKey(number, texts));
    return items;
}

constexpr std::pair<QLatin1StringView, Inserted (*)(QStringView, const TextTable&)> kMarks[] = {
    {"keys"_L1, KeyRows}, {"command"_L1, CommandOf},  {"rule"_L1, RuleRow},
    {"text"_L1, TextOf},  {"texts"_L1, MessageItems},
};

TextTable TextsOf(QStringView folder) {
    TextTable texts;
    for (const texts::Language* language : texts::Languages()) {
        if (language->help != folder) continue;
        texts.SetLanguage(language->lcid);
        break;
    }
    return texts;
}

}  // namespace

QByteArray WithInserts(const QByteArray& page, QStringView folder) {
    static const QRegularExpression kMark(u"<!-- (\\w+): ([^ ]+) -->"_s);
    if (!page.contains("<!-- ")) return page;
    const TextTable texts = TextsOf(folder);
    const QString text = QString::fromUtf8(page);
    QString result;
    qsizetype done = 0;
    for (auto marks = kMark.globalMatch(text); marks.hasNext();) {
        const QRegularExpressionMatch mark = marks.next();
        const auto* known = std::ranges::find_if(
            kMarks, [&](const auto& entry) { return mark.capturedView(1) == entry.first; });
        if (known == std::end(kMarks)) continue;
        const Inserted inserted = known->second(mark.capturedView(2), texts);
        if (!inserted) continue;
        result += QStringView(text).mid(done, mark.capturedStart() - done);
        result += *inserted;
        done = mark.capturedEnd();
    }
    return (result + text.mid(done)).toUtf8();
}

}  // namespace help
