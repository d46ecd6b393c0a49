#include "transfer/PlanTexts.h"

#include <QStringList>

#include "projectdb/Text.h"
#include "spreadsheet/Cell.h"
#include "texts/MResourceTable.h"

namespace transfer {
namespace {

using namespace Qt::Literals::StringLiterals;
using exchange::Plan;
using exchange::PlannedRow;
using Text = MResourceTable::Exchange;
using State = PlannedRow::State;
using Cause = PlannedRow::Cause;

Text ProblemText(project::Problem problem) {
    using project::Problem;
    switch (problem) {
        case Problem::NotWhole:
            return Text::NotWhole;
        case Problem::OutOfRange:
            return Text::OutOfRange;
        case Problem::TooLong:
            return Text::TooLong;
        case Problem::NotListed:
            return Text::NotListed;
        case Problem::NoColour:
            return Text::NoColour;
        case Problem::NotEditable:
            return Text::NotEditable;
        default:
            return Text::NoNumber;
    }
}

}  // namespace

const words::Language& FileLanguage(const MResources::TextTable& texts) {
    return words::LanguageOf(texts.Language().locale.toStdString());
}

QString PlaceOf(const Plan& plan, const PlannedRow& row, const MResources::TextTable& texts) {
    if (row.line == 0) return {};
    const QString line = QString::number(row.line);
    if (plan.sheet.empty()) return texts.GetText(Text::Line, {{u"n", line}});
    return projectdb::ToQString(plan.sheet) + u' ' + line;
}

QString StateOf(const Plan& plan, const PlannedRow& row, const MResources::TextTable& texts) {
    switch (row.state) {
        case State::New:
            return texts.GetText(Text::New);
        case State::Changed:
            return texts.GetText(Text::Changed);
        case State::Missing:
            return texts.GetText(plan.deleteMissing ? Text::Deleted : Text::Missing);
        case State::Ambiguous:
            return texts.GetText(Text::Ambiguous);
        default:
            return texts.GetText(Text::Refused);
    }
}

QString ReasonOf(const PlannedRow& row, const exchange::Sheet& sheet,
                 const MResources::TextTable& texts) {
    const QString given = projectdb::ToQString(row.given);
    switch (row.cause) {
        case Cause::None:
        case Cause::LeftOut:
            return {};
        case Cause::BadCell:
        case Cause::NoResult: {
            const Text what =
                row.cause == Cause::NoResult ? Text::NoResult : ProblemText(row.problem);
            const QString heading =
                projectdb::ToQString(sheet.Heading(row.column, FileLanguage(texts)));
            const QString text = texts.GetText(what, {{u"field", heading}, {u"text", given}});
            const QString doubt = DoubtOf(row.suspicion, texts);
            return doubt.isEmpty() ? text : text + u' ' + doubt;
        }
        case Cause::NoName:
            return texts.GetText(Text::NoName);
        case Cause::NoArchive:
            return texts.GetText(Text::NoArchive, {{u"name", given}});
        case Cause::SeveralArchives:
            return texts.GetText(Text::SeveralArchives, {{u"name", given}});
        case Cause::SeveralRows:
            return texts.GetText(Text::SeveralRows);
        case Cause::OtherNames:
            return texts.GetText(Text::OtherNames);
        case Cause::GivenTwice:
            return texts.GetText(Text::GivenTwice, {{u"n", QString::number(row.other)}});
        case Cause::NameInUse:
            return texts.GetText(Text::NameInUse);
        case Cause::TooManyCells:
            return texts.GetText(Text::TooManyCells);
    }
    return {};
}

QString FieldOf(const Plan& plan, const PlannedRow& row, const exchange::FieldChange& change,
                const exchange::Sheet& sheet, const MResources::TextTable& texts) {
    if (!change.sheetColumn) return projectdb::ToQString(change.table + "." + change.column);
    QString heading = projectdb::ToQString(sheet.Heading(*change.sheetColumn, FileLanguage(texts)));
    const auto& place = plan.places[*change.sheetColumn];
    if (plan.sheet.empty() || !place) return heading;
    return heading + u" ("_s + projectdb::ToQString(spreadsheet::CellName(*place, row.line)) + u')';
}

QString ValueOf(const exchange::FieldChange& change, const ado::Value& value,
                const exchange::Sheet& sheet, const MResources::TextTable& texts) {
    if (ado::IsNull(value)) return {};
    exchange::Cell cell;
    static const exchange::SheetColumn kPlain;
    exchange::WriteCell(change.sheetColumn ? sheet.Columns()[*change.sheetColumn] : kPlain, value,
                        FileLanguage(texts), cell);
    if (cell.kind == exchange::CellKind::Text && cell.text.empty()) {
        return texts.GetText(Text::EmptyText);
    }
    return projectdb::ToQString(cell.text);
}

QString DoubtOf(exchange::Suspicion suspicion, const MResources::TextTable& texts) {
    switch (suspicion) {
        case exchange::Suspicion::Date:
            return texts.GetText(Text::MadeDate);
        case exchange::Suspicion::Rounded:
            return texts.GetText(Text::MadeRounded);
        case exchange::Suspicion::NoText:
            return texts.GetText(Text::MadeNumber);
        default:
            return {};
    }
}

QString SummaryOf(const std::vector<Plan>& plans, const MResources::TextTable& texts) {
    QStringList sentences;
    for (const Plan& plan : plans) {
        std::size_t leftOut = 0;
        for (const PlannedRow& row : plan.rows) leftOut += row.cause == Cause::LeftOut ? 1 : 0;
        const auto count = [&](State state) { return QString::number(plan.Count(state)); };
        const QString sheet = plan.sheet.empty()
                                  ? projectdb::ToQString(NameOf(plan.kind, FileLanguage(texts)))
                                  : projectdb::ToQString(plan.sheet);
        sentences += texts.GetText(plan.deleteMissing ? Text::SummaryDeleting : Text::Summary,
                                   {{u"sheet", sheet},
                                    {u"new", count(State::New)},
                                    {u"changed", count(State::Changed)},
                                    {u"same", QString::number(plan.same)},
                                    {u"missing", count(State::Missing)},
                                    {u"ambiguous", count(State::Ambiguous)},
                                    {u"refused", count(State::Refused)},
                                    {u"out", QString::number(leftOut)}});
    }
    return sentences.join(u'\n');
}

}  // namespace transfer
