#include "differences/DifferenceTexts.h"

#include <QLocale>
#include <QStringList>

#include "findings/FindingTexts.h"
#include "platform/Locale.h"
#include "project/Changes.h"
#include "project/FieldParts.h"
#include "project/FieldText.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace differences {
namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToQString;
using projectdb::ToUtf16;
using Text = MResourceTable::Compare;

bool IsChanged(const ado::RowChange& row, std::string_view column) {
    const ado::Value* before = row.ValueIn(row.before, column);
    return before != nullptr && !project::IsSame(*before, *row.ValueIn(row.after, column));
}

/// What a part of a field holds that has never been set.
bool IsNothing(const project::FieldPart& part, const ado::Value& value) {
    return ado::IsNull(value) || (part.mask != 0 && part.codes.empty() && value == ado::Value(0));
}

}  // namespace

QString NumberText(std::size_t number, const MResources::TextTable& texts) {
    return platform::NumberLocale(QLocale(texts.Language().locale))
        .toString(static_cast<qulonglong>(number));
}

QString DifferenceTexts::NameIn(const ado::RowChange& row, bool here) const {
    const std::vector<ado::Value>& side = here ? row.after : row.before;
    if (side.empty()) return {};
    const ado::Value* name = row.ValueIn(side, "Name");
    if (row.table == project::kTextTable) {
        // A text has no name: it is known by what it says.
        for (std::size_t i = 0; i < side.size() && name == nullptr; ++i) {
            const bool says = project::IsLanguageColumn((*row.columns)[i]) &&
                              !project::ValueText(side[i]).empty();
            if (says) name = &side[i];
        }
    }
    QString text = name != nullptr ? ToQString(project::ValueText(*name)) : QString();
    if (text.isEmpty()) {
        const std::int32_t id = project::NumberOf(row).value_or(0);
        text = texts_.GetText(Text::RowNumber, {{u"n", QString::number(id)}});
    }
    if (row.table != project::kTrendTable) return text;
    const ado::Value* archive = row.ValueIn(side, "ArchiveID");
    if (archive == nullptr) return text;
    return texts_.GetText(
        Text::TrendOf,
        {{u"trend", text}, {u"archive", ReferenceText(project::kArchiveTable, *archive, here)}});
}

QString DifferenceTexts::NameOf(const ado::RowChange& row) const {
    return NameIn(row, !row.after.empty());
}

QString DifferenceTexts::WhatOf(const ado::RowChange& row) const {
    if (row.before.empty()) return texts_.GetText(Text::IsOnlyHere);
    if (row.after.empty()) return texts_.GetText(Text::IsOnlyThere);
    QStringList what;
    if (IsChanged(row, "Name")) what += texts_.GetText(Text::IsRenamed);
    if (row.table == project::kTrendTable && IsChanged(row, "ArchiveID")) {
        what += texts_.GetText(Text::IsMoved);
    }
    return what.isEmpty() ? texts_.GetText(Text::IsChanged) : what.join(u", "_s);
}

QList<FieldLine> DifferenceTexts::FieldsOf(const ado::RowChange& row) const {
    QList<FieldLine> lines;
    const auto word = [this](int number) {
        return ToUtf16(texts_.GetText(number).remove(u'&'));  // some are captions in dialogs too
    };
    for (std::size_t i = 0; i < row.columns->size(); ++i) {
        const std::string& column = (*row.columns)[i];
        if (column == project::kKeyColumn) continue;
        const std::string_view target = project::TargetOf(row, column);
        for (const project::FieldPart& part : project::PartsOf(row.table, column)) {
            const auto valueOf = [&](const std::vector<ado::Value>& side) {
                return side.empty() ? ado::Value() : project::PartOf(part, side[i]);
            };
            const ado::Value before = valueOf(row.before);
            const ado::Value after = valueOf(row.after);
            const bool isChange = !row.before.empty() && !row.after.empty();
            const bool isSame = isChange ? project::IsSame(before, after)
                                         : IsNothing(part, row.before.empty() ? after : before);
            if (isSame) continue;
            const auto textOf = [&](const std::vector<ado::Value>& side, const ado::Value& value,
                                    bool here) {
                if (side.empty()) return QString();
                const QString known = ToQString(project::WordOf(part, value, word));
                return known.isEmpty() ? ReferenceText(target, value, here) : known;
            };
            lines += FieldLine{CaptionOf(row, column, part.caption), textOf(row.after, after, true),
                               textOf(row.before, before, false), column};
        }
    }
    return lines;
}

QString DifferenceTexts::CaptionOf(const ado::RowChange& row, const std::string& column,
                                   int caption) const {
    if (caption != 0 && row.table != project::kTextTable) {
        return texts_.GetText(caption).remove(u'&');
    }
    const QString known = findings::CaptionOf(row.table, column, texts_);
    return known.isEmpty() ? ToQString(column) : known;
}

QString DifferenceTexts::ValueText(const ado::Value& value) const {
    if (ado::IsNull(value)) return texts_.GetText(Text::Nothing);
    if (const auto* flag = std::get_if<bool>(&value)) {
        return texts_.GetText(*flag ? MResourceTable::kTextTrue : MResourceTable::kTextFalse);
    }
    const QChar point =
        platform::DecimalSeparator(platform::NumberLocale(QLocale(texts_.Language().locale)));
    const QString text = ToQString(project::ValueText(value, point.unicode()));
    return text.isEmpty() ? u"\"\""_s : text;
}

QString DifferenceTexts::ReferenceText(std::string_view target, const ado::Value& value,
                                       bool here) const {
    const QString text = ValueText(value);
    const auto* id = std::get_if<std::int32_t>(&value);
    if (target.empty() || id == nullptr) return text;
    const project::RowNames& names = here ? differences_.after : differences_.before;
    const auto found = names.find({std::string(target), *id});
    return found == names.end() ? text : ToQString(found->second);
}

QString DifferenceTexts::TableText(const std::string& table, std::size_t count) const {
    const QString number = NumberText(count, texts_);
    static constexpr std::pair<std::string_view, Text> kOwn[] = {
        {project::kArchiveTable, Text::Archives},
        {project::kTrendTable, Text::Trends},
        {project::kTextTable, Text::Texts},
        {project::kGroupTable, Text::Groups}};
    for (const auto& [own, text] : kOwn) {
        if (table == own) return texts_.GetText(text, {{u"n", number}});
    }
    return texts_.GetText(Text::OtherTable, {{u"table", ToQString(table)}, {u"n", number}});
}

QString DifferenceTexts::TextOf(const project::TableDifference& difference) const {
    using Kind = project::TableDifference::Kind;
    const auto text = [&] {
        switch (difference.kind) {
            case Kind::TableGone:
                return Text::TableOnlyThere;
            case Kind::TableNew:
                return Text::TableOnlyHere;
            case Kind::ColumnGone:
                return Text::ColumnOnlyThere;
            case Kind::ColumnNew:
                break;
        }
        return Text::ColumnOnlyHere;
    }();
    return texts_.GetText(
        text, {{u"table", ToQString(difference.table)}, {u"column", ToQString(difference.column)}});
}

}  // namespace differences
