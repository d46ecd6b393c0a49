#include "report/Wording.h"

#include <algorithm>

#include "platform/Locale.h"
#include "project/Number.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "report/Section.h"
#include "texts/MResources.h"

namespace report {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToQString;

namespace {

namespace ArchiveType = project::ArchiveType;
namespace SampleMode = project::SampleMode;

// In the order of the clock's events.
constexpr Text kFileChanges[] = {
    Text::FileChangeYear, Text::FileChangeMonth,  Text::FileChangeWeek,  Text::FileChangeDay,
    Text::FileChangeHour, Text::FileChangeMinute, Text::FileChangeSecond};

bool IsEmpty(const Cell& cell) {
    return !cell.damaged && PlainText(cell).isEmpty();
}

QString LanguageName(int lcid) {
    if (lcid == static_cast<int>(MResources::kGerman)) return u"de"_s;
    if (lcid == static_cast<int>(MResources::kEnglish)) return u"en"_s;
    return QString::number(lcid);
}

}  // namespace

/// The value in the language's own form of numbers; empty for Null.
QString Wording::Value(const Cell& cell) const {
    if (cell.damaged) return texts_(Text::Damaged);
    const char16_t point = platform::DecimalSeparator(texts_.Locale()).unicode();
    if (const auto* number = std::get_if<double>(&cell.value)) {
        return ToQString(project::FormatNumber(*number, point));
    }
    if (const auto* number = std::get_if<float>(&cell.value)) {
        return ToQString(project::FormatNumber(*number, point));
    }
    if (const auto* number = std::get_if<std::int32_t>(&cell.value)) return texts_.Number(*number);
    return PlainText(cell);
}

/// The value, or that there is none.
QString Wording::Named(const Cell& cell) const {
    const QString value = Value(cell);
    return value.isEmpty() ? u'(' + texts_(Text::NotSet) + u')' : value;
}

Line Wording::Warning(Text text, const QString& filled) const {
    return {texts_(text, {{u"value", filled}}), Line::Look::Warning};
}

/// The words of a code that counts from 0.
Line Wording::Code(const Cell& cell, std::initializer_list<Text> words) const {
    if (cell.damaged) return {texts_(Text::Damaged), Line::Look::Warning};
    const std::optional<int> code = Integer(cell);
    if (!code) return {texts_(Text::NotSet), Line::Look::Muted};
    if (*code < 0 || *code >= static_cast<int>(words.size())) {
        return Warning(Text::UnknownCode, QString::number(*code));
    }
    return {texts_(words.begin()[*code])};
}

Lines Wording::DisplayTexts(const QList<LanguageText>& texts) const {
    Lines lines;
    for (const LanguageText& text : texts) {
        lines += Line{LanguageName(text.lcid) + u": "_s + text.text};
    }
    return lines;
}

QList<Fact> Wording::Archive(const ArchiveRow& row) const {
    if (!row.failure.isEmpty()) {
        return {{texts_(Text::Problems), {Warning(Text::RowGone, row.failure)}}};
    }
    QList<Fact> facts;
    const auto add = [&](Text name, Lines lines) {
        if (!lines.isEmpty()) facts += Fact{texts_(name), std::move(lines)};
    };
    const auto addValue = [&](Text name, std::string_view column) {
        if (!IsEmpty(row[column])) add(name, {Line{Value(row[column])}});
    };
    const int type = Integer(row["Type"]).value_or(0);
    const bool onDisk = (type & ArchiveType::kMainMemory) == 0;

    Lines names = DisplayTexts(row.texts);
    if (row.textMissing) names += Warning(Text::TextMissing, PlainText(row["TextID"]));
    add(Text::DisplayText, names);
    add(Text::Type, TypeWords(row));
    add(Text::Storage, StorageWords(row));
    add(Text::Recording, {RecordingWords(row)});
    if (onDisk && (type & ArchiveType::kKindMask) == ArchiveType::kContinuationFile) {
        add(Text::FileChange, {FileChangeWords(row)});
        add(Text::Limits, LimitWords(row));
    }
    if (onDisk) {
        QString path = PlainText(row["FilePath"]);
        if (!path.isEmpty() && !path.endsWith(u'\\')) path += u'\\';
        if (const QString file = path + PlainText(row["FileName"]); !file.isEmpty()) {
            add(Text::Files, {Line{file}});
        }
        add(Text::Redundancy,
            {Line{(type & ArchiveType::kRedundancy) != 0 ? Named(row["RedundancyFilePath"])
                                                         : texts_(Text::NoRedundancy)}});
    }
    const std::optional<int> mode = Integer(row["SampleMode"]);
    if (mode != SampleMode::kOnVariable) addValue(Text::XVariable, "XVar");
    if (mode != SampleMode::kOnTrigger) addValue(Text::Trigger, "Trigger");
    addValue(Text::StartStop, "StartStop");
    addValue(Text::Clear, "Reset");
    if (onDisk) addValue(Text::Cache, "CacheSize");
    addValue(Text::Authorization, "AuthorizationLevel");
    addValue(Text::Comment, "Comment");
    return facts;
}

Lines Wording::TypeWords(const ArchiveRow& row) const {
    if (row["Type"].damaged) return {{texts_(Text::Damaged), Line::Look::Warning}};
    const std::optional<int> type = Integer(row["Type"]);
    if (!type) return {{texts_(Text::NotSet), Line::Look::Muted}};
    Lines lines;
    const int kind = *type & ArchiveType::kKindMask;
    if (kind == ArchiveType::kCircularBuffer) {
        const std::optional<int> size = Integer(row["MaxSamples"]);
        lines += Line{size.value_or(0) > 0
                          ? texts_(Text::CircularBufferOf, {{u"n", texts_.Number(*size)}})
                          : texts_(Text::CircularBuffer)};
    } else if (kind == ArchiveType::kContinuationFile) {
        lines += Line{texts_(Text::ContinuationFile)};
    } else {
        lines += Warning(Text::UnknownType, QString::number(kind));
    }
    if (const int others = *type & ~ArchiveType::kKnown; others != 0) {
        lines += Line{texts_(Text::OtherTypeBits, {{u"bits", QString::number(others)}}),
                      Line::Look::Muted};
    }
    return lines;
}

Lines Wording::StorageWords(const ArchiveRow& row) const {
    const std::optional<int> type = Integer(row["Type"]);
    if (!type) return {};
    if ((*type & ArchiveType::kMainMemory) != 0) return {Line{texts_(Text::InMainMemory)}};
    return {
        Line{texts_(Text::OnHardDisk) + u", "_s +
             texts_((*type & ArchiveType::kSaveSafe) != 0 ? Text::SavedSafe : Text::SavedFast)}};
}

QString Wording::TypeInShort(const ArchiveRow& row) const {
    if (!row.failure.isEmpty()) return texts_(Text::Damaged);
    QStringList words;
    for (const Line& line : TypeWords(row) + StorageWords(row)) words += line.text;
    return words.join(u", "_s);
}

Line Wording::RecordingWords(const ArchiveRow& row) const {
    Line line = Code(row["SampleMode"], {Text::SampleSynchronous, Text::SampleAsynchronous,
                                         Text::SampleXVar, Text::SampleTrigger, Text::SampleSaveAll,
                                         Text::SampleNone, Text::SampleManual});
    switch (Integer(row["SampleMode"]).value_or(-1)) {
        case SampleMode::kCycles:
        case SampleMode::kMilliseconds:
            return {texts::Fill(line.text, {{u"value", Named(row["ScanTime"])}}), line.look};
        case SampleMode::kOnVariable:
            return {texts::Fill(line.text, {{u"value", Named(row["XVar"])}}), line.look};
        case SampleMode::kOnTrigger:
            return {texts::Fill(line.text, {{u"value", Named(row["Trigger"])}}), line.look};
        default:
            return line;
    }
}

Line Wording::FileChangeWords(const ArchiveRow& row) const {
    if (row["NewFile"].damaged) return {texts_(Text::Damaged), Line::Look::Warning};
    const QString event = PlainText(row["NewFile"]);
    if (const auto known = project::FindClockEvent(event.toStdU16String())) {
        return {texts_(kFileChanges[*known])};
    }
    if (!event.isEmpty()) return {texts_(Text::FileChangeTrigger, {{u"variable", event}})};
    const int samples = Integer(row["MaxSamples"]).value_or(0);
    return {samples != 0 ? texts_(Text::FileChangeCount, {{u"n", texts_.Number(samples)}})
                         : texts_(Text::FileChangeNever)};
}

Lines Wording::LimitWords(const ArchiveRow& row) const {
    Lines lines;
    const auto add = [&](std::string_view column, Text words) {
        if (row[column].damaged) lines += Line{texts_(Text::Damaged), Line::Look::Warning};
        const int limit = Integer(row[column]).value_or(0);
        if (limit != 0) lines += Line{texts_(words, {{u"n", texts_.Number(limit)}})};
    };
    add("MaxFiles", Text::LimitFiles);
    add("MaxSizeKb", Text::LimitSize);
    if (lines.isEmpty()) lines += Line{texts_(Text::NoLimits)};
    return lines;
}

TrendCells Wording::Trend(const TrendRow& row) const {
    TrendCells cells;
    if (!row.failure.isEmpty()) {
        cells[0] = {Warning(Text::RowGone, row.failure)};
        return cells;
    }
    const QString variable = Value(row["TrendVar"]);
    cells = {NameWords(row),
             variable.isEmpty() ? Lines{{texts_(Text::NotSet), Line::Look::Muted}}
                                : Lines{Line{variable}},
             RangeWords(row),
             SubstitutionWords(row),
             HysteresisWords(row),
             FilterWords(row),
             DisplayWords(row),
             CurveWords(row),
             ToleranceWords(row)};
    return cells;
}

Lines Wording::NameWords(const TrendRow& row) const {
    Line name{Named(row["Name"]), Line::Look::Strong};
    if (const std::optional<int> id = Integer(row[project::kKeyColumn])) {
        name.link = RowAddress(project::kTrendTable, *id);
    }
    Lines lines = {name};
    lines += DisplayTexts(row.texts);
    if (row.textMissing) lines += Warning(Text::TextMissing, PlainText(row["TextID"]));
    if (!IsEmpty(row["Comment"])) lines += Line{Value(row["Comment"]), Line::Look::Muted};
    return lines;
}

Lines Wording::RangeWords(const TrendRow& row) const {
    Lines lines;
    if (!IsEmpty(row["Minimum"]) || !IsEmpty(row["Maximum"])) {
        QString range = texts_(Text::FromTo,
                               {{u"from", Named(row["Minimum"])}, {u"to", Named(row["Maximum"])}});
        if (!IsEmpty(row["Unit"])) range += u' ' + Value(row["Unit"]);
        lines += Line{range};
    } else if (!IsEmpty(row["Unit"])) {
        lines += Line{Value(row["Unit"])};
    }
    const auto* factor = std::get_if<double>(&row["Factor"].value);
    const auto* offset = std::get_if<double>(&row["Offset"].value);
    const bool neutral = (factor == nullptr || *factor == 1.0) &&
                         (offset == nullptr || *offset == 0.0) && !row["Factor"].damaged &&
                         !row["Offset"].damaged;
    if (!neutral) {
        lines += Line{texts_(
            Text::Scaling, {{u"factor", Named(row["Factor"])}, {u"offset", Named(row["Offset"])}})};
    }
    return lines;
}

Lines Wording::SubstitutionWords(const TrendRow& row) const {
    Lines lines;
    const auto add = [&](std::string_view column, Text words) {
        if (!IsEmpty(row[column])) lines += Line{texts_(words, {{u"value", Value(row[column])}})};
    };
    add("SurrogateMax", Text::SubstitutionMax);
    add("SurrogateMin", Text::SubstitutionMin);
    add("ErrorValue", Text::SubstitutionError);
    return lines;
}

/// As the dialog understands it.
Lines Wording::HysteresisWords(const TrendRow& row) const {
    if (row["Hysteresis"].damaged || row["HysteresisMode"].damaged) {
        return {{texts_(Text::Damaged), Line::Look::Warning}};
    }
    const QString amount = Value(row["Hysteresis"]);
    const std::int32_t mode =
        project::HysteresisMode(!amount.isEmpty(), Integer(row["HysteresisMode"]).value_or(0));
    if (mode == project::kNoHysteresis) {
        return {{texts_(Text::HysteresisNone), Line::Look::Muted}};
    }
    constexpr std::array kWords = {Text::HysteresisAbsolute, Text::HysteresisRange,
                                   Text::HysteresisValue};
    return {Line{texts_(kWords.at(static_cast<std::size_t>(mode)), {{u"value", amount}})}};
}

Lines Wording::FilterWords(const TrendRow& row) const {
    const Line filter =
        Code(row["Filter"], {Text::FilterNone, Text::FilterAverage, Text::FilterAveraging,
                             Text::FilterMax, Text::FilterMin});
    const int code = Integer(row["Filter"]).value_or(0);
    if (code == 0)
        return {{filter.text, filter.look == Line::Look::Plain ? Line::Look::Muted : filter.look}};
    Lines lines = {filter};
    if (!IsEmpty(row["FilterDepth"])) {
        lines += Line{texts_(Text::FilterDepth, {{u"n", Value(row["FilterDepth"])}})};
    }
    return lines;
}

Lines Wording::DisplayWords(const TrendRow& row) const {
    Lines lines;
    if (!IsEmpty(row["VMin"]) || !IsEmpty(row["VMax"])) {
        lines += Line{
            texts_(Text::FromTo, {{u"from", Named(row["VMin"])}, {u"to", Named(row["VMax"])}})};
    }
    lines += Code(row["VDrawMode"], {Text::DrawLine, Text::DrawStair, Text::DrawSpline,
                                     Text::DrawPoints, Text::DrawBars});
    if (Integer(row["VMaxSamples"]).value_or(0) > 0 || row["VMaxSamples"].damaged) {
        lines += Line{texts_(Text::Samples, {{u"n", Value(row["VMaxSamples"])}})};
    }
    return lines;
}

Lines Wording::CurveWords(const TrendRow& row) const {
    const std::optional<int> colour = Integer(row["VLineColor"]);
    const std::optional<int> width = Integer(row["VLineWidth"]);
    const std::optional<int> style = Integer(row["VLineStyle"]);
    Lines lines;
    if (colour) {
        const Curve curve{static_cast<std::uint32_t>(*colour), width.value_or(1),
                          style.value_or(0)};
        lines += Line{{}, Line::Look::Plain, curve};
        lines += Line{curve.ColourName()};
    }
    Line form = Code(row["VLineStyle"], {Text::StyleLine, Text::StyleDashed, Text::StyleDotted});
    if (width)
        form.text =
            texts_(Text::LineWidth, {{u"n", QString::number(*width)}}) + u", "_s + form.text;
    lines += form;
    return lines;
}

Lines Wording::ToleranceWords(const TrendRow& row) const {
    Lines lines;
    const auto add = [&](std::string_view limit, std::string_view colour, Text words) {
        if (IsEmpty(row[limit])) return;
        Line line{texts_(words, {{u"value", Value(row[limit])}})};
        if (const std::optional<int> code = Integer(row[colour])) {
            line.curve = Curve{static_cast<std::uint32_t>(*code), 1, 0};
        }
        lines += line;
    };
    add("VUpper", "VUpperColor", Text::ToleranceUpper);
    add("VLower", "VLowerColor", Text::ToleranceLower);
    if (lines.isEmpty()) return lines;
    Line config =
        Code(row["VConfig"], {Text::ToleranceColour, Text::ToleranceLines, Text::ToleranceBoth});
    if (config.look == Line::Look::Plain) config.look = Line::Look::Muted;
    lines += config;
    return lines;
}

QString Wording::Place(const Problem& problem) const {
    QString place = problem.table;
    if (problem.row != 0) place += u" "_s + QString::number(problem.row);
    if (!problem.name.isEmpty()) place += u" ("_s + problem.name + u')';
    return place;
}

QString Wording::Finding(const Problem& problem) const {
    switch (problem.kind) {
        case Problem::Kind::Row:
            return texts_(Text::ProblemRow, {{u"value", problem.detail}});
        case Problem::Kind::Value:
            return texts_(Text::ProblemValue, {{u"value", problem.detail}});
        case Problem::Kind::MissingText:
            return texts_(Text::ProblemText, {{u"value", problem.detail}});
        case Problem::Kind::MissingArchive:
            return texts_(Text::ProblemArchive, {{u"value", problem.detail}});
        case Problem::Kind::Table:
            return texts_(Text::ProblemTable, {{u"value", problem.detail}});
    }
    return {};
}

}  // namespace report
