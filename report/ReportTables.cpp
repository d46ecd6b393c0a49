#include "report/ReportTables.h"

#include <array>
#include <initializer_list>
#include <iterator>
#include <QDate>
#include <QLocale>

#include "differences/DifferenceTexts.h"
#include "findings/FindingTexts.h"
#include "project/Changes.h"
#include "project/TakeOver.h"
#include "projectdb/Text.h"

namespace report {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToQString;
using CompareText = MResourceTable::Compare;

namespace {

// A column of the trend table, its share of the width in percent, and what it says by itself.
struct TrendColumn {
    Text name;
    int width;
    std::initializer_list<Text> words;
};
const TrendColumn kTrendColumns[] = {
    {Text::ColumnName, 15, {Text::TextMissing}},
    {Text::ColumnVariable, 14, {Text::NotSet}},
    {Text::ColumnRange, 11, {Text::FromTo, Text::Scaling, Text::NotSet}},
    {Text::ColumnSubstitution,
     9,
     {Text::SubstitutionMax, Text::SubstitutionMin, Text::SubstitutionError}},
    {Text::ColumnHysteresis,
     9,
     {Text::HysteresisAbsolute, Text::HysteresisRange, Text::HysteresisValue,
      Text::HysteresisNone}},
    {Text::ColumnFilter,
     7,
     {Text::FilterNone, Text::FilterAverage, Text::FilterAveraging, Text::FilterMax,
      Text::FilterMin, Text::FilterDepth}},
    {Text::ColumnDisplay,
     14,
     {Text::DrawLine, Text::DrawStair, Text::DrawSpline, Text::DrawPoints, Text::DrawBars,
      Text::Samples, Text::FromTo}},
    {Text::ColumnCurve,
     8,
     {Text::LineWidth, Text::StyleLine, Text::StyleDashed, Text::StyleDotted}},
    {Text::ColumnTolerance,
     13,
     {Text::ToleranceUpper, Text::ToleranceLower, Text::ToleranceColour, Text::ToleranceLines,
      Text::ToleranceBoth}},
};
static_assert(std::size(kTrendColumns) == std::tuple_size_v<TrendCells>);

QString DayText(const std::string& day, const QLocale& locale) {
    const QDate date = QDate::fromString(ToQString(day), Qt::ISODate);
    return date.isValid() ? locale.toString(date, QLocale::ShortFormat) : ToQString(day);
}

}  // namespace

const ProjectReader::Archive& ReportTables::TrendsOf(const Section& section) const {
    return section.kind == Section::Kind::Archive ? reader_.Archives().at(section.archive)
                                                  : reader_.WithoutArchive();
}

std::size_t ReportTables::RowCount(const Section& section) const {
    const project::Judgement& judgement = reader_.Findings().judgement;
    switch (section.kind) {
        case Section::Kind::Findings:
            return judgement.open.size() + judgement.accepted.size();
        case Section::Kind::Differences:
            return reader_.Differences() != nullptr ? reader_.Differences()->rows.size() : 0;
        default:
            return TrendsOf(section).trends.size();
    }
}

QList<TableHead> ReportTables::Heads(Section::Kind kind) const {
    QList<TableHead> heads;
    if (kind == Section::Kind::Findings) {
        return {{texts_(Text::FindingSeverity), 12, {}},
                {texts_(Text::ProblemWhere), 33, {}},
                {texts_(Text::ProblemWhat), 55, {}}};
    }
    if (kind == Section::Kind::Differences) {
        const auto& table = texts_.Table();
        const QString there =
            table.GetText(CompareText::There, {{u"other", reader_.ComparedWith()}});
        const QString here = table.GetText(CompareText::Here, {{u"project", reader_.Name()}});
        return {{table.GetText(CompareText::Difference), 40, {}},
                {there + u" → "_s + here, 60, {}}};
    }
    for (const TrendColumn& column : kTrendColumns) {
        TableHead head{texts_(column.name), column.width, {}};
        for (const Text word : column.words) {
            for (const QString& part : texts_(word).split(u' ')) {
                if (!part.contains(u'<')) head.words += part;
            }
        }
        heads += head;
    }
    return heads;
}

QList<Lines> ReportTables::Row(const Section& section, std::size_t row) const {
    if (section.kind == Section::Kind::Findings) return FindingRow(row);
    if (section.kind == Section::Kind::Differences) return DifferenceRow(row);
    const TrendCells cells = wording_.Trend(reader_.ReadTrend(TrendsOf(section).trends.at(row)));
    return {cells.begin(), cells.end()};
}

QList<Lines> ReportTables::FindingRow(std::size_t row) const {
    const project::Judgement& judgement = reader_.Findings().judgement;
    const std::size_t open = judgement.open.size();
    const project::Judgement::Accepted* accepted =
        row < open ? nullptr : &judgement.accepted.at(row - open);
    const project::Finding& finding = accepted != nullptr ? accepted->finding : judgement.open[row];
    const auto& table = texts_.Table();
    const project::FoundRow found = findings::RowOf(finding);
    Lines place;
    Line name{ToQString(found.name), Line::Look::Strong};
    name.link = RowAddress(finding.table, finding.id, finding.column);
    if (name.text.isEmpty()) {
        name.text = table.GetText(CompareText::RowNumber, {{u"n", QString::number(found.id)}});
    }
    place += name;
    if (!found.archive.empty()) {
        place += Line{texts_(Text::Archive, {{u"name", ToQString(found.archive)}})};
    }
    const QString caption = findings::CaptionOf(finding.table, finding.column, table);
    if (!caption.isEmpty()) place += Line{caption, Line::Look::Muted};
    Lines what = {Line{findings::ListTextOf(finding, findings::WordsOf(table))}};
    if (accepted != nullptr) {
        const project::Acceptance& why = accepted->why;
        what +=
            Line{texts_(Text::FindingAccepted, {{u"reason", ToQString(why.reason)},
                                                {u"by", ToQString(why.by)},
                                                {u"until", DayText(why.until, texts_.Locale())}}),
                 Line::Look::Muted};
    }
    const bool isError = finding.severity == project::Severity::Error && accepted == nullptr;
    return {{Line{findings::SeverityText(finding.severity, table),
                  isError ? Line::Look::Warning : Line::Look::Plain}},
            place,
            what};
}

QList<Lines> ReportTables::DifferenceRow(std::size_t row) const {
    const project::Differences& found = *reader_.Differences();
    const ado::RowChange& change = found.rows.at(row);
    const differences::DifferenceTexts words(texts_.Table(), found);
    Line name{words.NameOf(change), Line::Look::Strong};
    const std::int32_t id = project::NumberOf(change).value_or(0);
    if (!change.after.empty() && project::IsTakenOver(found, change.table)) {
        name.link = RowAddress(change.table, id);
    }
    Lines settings;
    for (const differences::FieldLine& field : words.FieldsOf(change)) {
        const bool isChange = !change.before.empty() && !change.after.empty();
        const QString values =
            isChange ? field.there + u" → "_s + field.here : field.there + field.here;
        settings += Line{field.caption + u": "_s + values};
    }
    return {{name, Line{words.WhatOf(change)}}, settings};
}

}  // namespace report
