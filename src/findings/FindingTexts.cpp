#include "findings/FindingTexts.h"

#include <QStringList>

#include "icons/Icons.h"
#include "platform/Locale.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace findings {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace MResourceTable;
using projectdb::ToQString;
using projectdb::ToUtf16;

QString TextOfKey(const QString& key, const MResources::TextTable& texts) {
    const int number = texts::NumberOf(key);
    return number != 0 ? texts.GetText(number) : QString();
}

int CaptionNumber(std::string_view table, std::string_view column) {
    const project::Column* known = table == project::kTrendTable ? project::FindTrendColumn(column)
                                   : table == project::kArchiveTable
                                       ? project::FindArchiveColumn(column)
                                       : nullptr;
    return known != nullptr ? known->caption : 0;
}

void AddCount(QStringList& parts, qsizetype n, int one, int several,
              const MResources::TextTable& texts) {
    if (n == 0) return;
    parts += texts.GetText(n == 1 ? one : several, {{u"n", QString::number(n)}});
}

}  // namespace

project::FindingWords WordsOf(const MResources::TextTable& texts) {
    return {[&texts](std::string_view key) { return ToUtf16(TextOfKey(ToQString(key), texts)); },
            [&texts](std::string_view table, std::string_view column) {
                return ToUtf16(CaptionOf(table, column, texts));
            }};
}

QString ListTextOf(const project::Finding& finding, const project::FindingWords& words) {
    return ToQString(project::MessageOf(finding, words, project::Subject::This));
}

QString MeaningOf(project::Rule rule, const MResources::TextTable& texts) {
    const QString key = ToQString(project::TextKeyOf(rule));
    return TextOfKey(u"RuleMeaning."_s + key, texts) + u' ' +
           TextOfKey(u"RuleAdvice."_s + key, texts);
}

QString CaptionOf(std::string_view table, std::string_view column,
                  const MResources::TextTable& texts) {
    if (const int number = CaptionNumber(table, column); number != 0) {
        return texts.GetText(number).remove(u'&');
    }
    if (project::IsLanguageColumn(column)) {
        const auto lcid = static_cast<platform::Lcid>(ToQString(column).mid(1).toUInt());
        const QString language = platform::LanguageName(lcid, texts.Language().lcid);
        return texts.GetText(kTextTextIn,
                             {{u"language", language.isEmpty() ? ToQString(column) : language}});
    }
    // No name of a column means anything to a user.
    return column == "TextID"      ? texts.GetText(kTextTextOfRow)
           : column == "ArchiveID" ? texts.GetText(kTextArchiveOfRow)
                                   : QString();
}

project::FoundRow RowOf(const project::Finding& finding) {
    if (finding.table == project::kTextTable && !finding.others.empty()) {
        return finding.others.front();
    }
    return {finding.table, finding.id, finding.name, finding.archive};
}

QString SeverityText(project::Severity severity, const MResources::TextTable& texts) {
    switch (severity) {
        case project::Severity::Error:
            return texts.GetText(kTextFindingError);
        case project::Severity::Warning:
            return texts.GetText(kTextFindingWarning);
        default:
            return texts.GetText(kTextFindingNote);
    }
}

QIcon SeverityIcon(project::Severity severity) {
    switch (severity) {
        case project::Severity::Error:
            return icons::Icon(u"finding-error");
        case project::Severity::Warning:
            return icons::Icon(u"finding-warning");
        default:
            return icons::Icon(u"finding-note");
    }
}

Counts CountsOf(const std::vector<project::Finding>& findings) {
    Counts counts;
    for (const project::Finding& finding : findings) {
        ++(finding.severity == project::Severity::Error     ? counts.errors
           : finding.severity == project::Severity::Warning ? counts.warnings
                                                            : counts.notes);
    }
    return counts;
}

QString CountText(const Counts& counts, const MResources::TextTable& texts) {
    QStringList parts;
    AddCount(parts, counts.errors, kTextFindingsOneError, kTextFindingsErrors, texts);
    AddCount(parts, counts.warnings, kTextFindingsOneWarning, kTextFindingsWarnings, texts);
    AddCount(parts, counts.notes, kTextFindingsOneNote, kTextFindingsNotes, texts);
    return parts.isEmpty() ? texts.GetText(kTextFindingsNone) : parts.join(u", "_s);
}

}  // namespace findings
