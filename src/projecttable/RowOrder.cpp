#include "projecttable/RowOrder.h"

#include <algorithm>
#include <numeric>
#include <QCollator>

#include "cells/CellText.h"
#include "project/Colour.h"
#include "project/Number.h"
#include "projectdb/Text.h"

namespace {

using ValueNumber = TrendTable::ValueNumber;

bool IsListed(const TrendTable::Column& column) {
    return column.known != nullptr && !column.known->codes.empty();
}

/// The number that a value is, where the column's numbers mean amounts.
std::optional<double> AmountOf(const TrendTable::Column& column, const ado::Value& value) {
    if (IsListed(column)) return std::nullopt;
    if (const auto* text = std::get_if<std::u16string>(&value)) {
        if (column.known == nullptr || column.known->kind != project::Kind::Limit) {
            return std::nullopt;
        }
        const project::NumberText read = project::ReadNumber(*text);
        return read.whole && !read.tooLarge ? std::optional(read.number) : std::nullopt;
    }
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* number = std::get_if<float>(&value)) return *number;
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    if (const auto* date = std::get_if<ado::Date>(&value)) return date->days;
    return ado::ToNumber(ado::ToText(value));
}

QString ShownText(const TrendTable::Column& column, const ado::Value& value, const QLocale& locale,
                  const MResources::TextTable& texts) {
    if (const auto* number = std::get_if<std::int32_t>(&value);
        number != nullptr && column.known != nullptr) {
        for (const project::Code& code : column.known->codes) {
            if (code.code == *number) return texts.GetText(code.text);
        }
        if (column.known->kind == project::Kind::Colour) {
            return projectdb::ToQString(project::ColourText(*number));
        }
    }
    return CellText(value, locale, texts);
}

}  // namespace

void RowOrder::SetFilters(std::map<std::size_t, RowFilter> filters, RowFilter anywhere,
                          std::vector<bool> shownColumns) {
    filters_ = std::move(filters);
    anywhere_ = std::move(anywhere);
    shownColumns_ = std::move(shownColumns);
}

const QString& RowOrder::TextOf(std::size_t column, ValueNumber value) {
    const TrendTable::Column& of = table_.Columns()[column];
    std::vector<QString>& texts = columns_[column].texts;
    for (std::size_t next = texts.size(); next <= value; ++next) {
        texts.push_back(ShownText(of, of.values[next], locale_, texts_));
    }
    return texts[value];
}

RowFilter::Subject RowOrder::SubjectOf(std::size_t column, ValueNumber value) {
    const TrendTable::Column& of = table_.Columns()[column];
    RowFilter::Subject subject{TextOf(column, value), AmountOf(of, of.values[value])};
    const bool isVariable = of.known != nullptr && (of.known->kind == project::Kind::Variable ||
                                                    of.known->kind == project::Kind::Limit);
    subject.isUnknownVariable = isVariable && !subject.text.isEmpty() && !subject.number &&
                                !table_.IsVariable(ado::ToText(of.values[value]));
    return subject;
}

std::vector<bool> RowOrder::Passed(std::size_t column, const RowFilter& filter) {
    std::vector<bool> passed(table_.Columns()[column].values.size());
    for (std::size_t value = 0; value < passed.size(); ++value) {
        passed[value] = filter.Matches(SubjectOf(column, static_cast<ValueNumber>(value)));
    }
    return passed;
}

RowOrder::Rows RowOrder::Compute(const std::set<std::int32_t>& archives) {
    std::vector<bool> passes(table_.RowCount(), true);
    if (!anywhere_.AsksNothing()) {
        passes.assign(table_.RowCount(), false);
        for (std::size_t column = 0; column < columns_.size(); ++column) {
            if (column < shownColumns_.size() && !shownColumns_[column]) continue;
            const std::vector<bool> passed = Passed(column, anywhere_);
            for (std::size_t row = 0; row < passes.size(); ++row) {
                if (passed[table_.NumberAt(row, column)]) passes[row] = true;
            }
        }
    }
    for (const auto& [column, filter] : filters_) {
        const std::vector<bool> passed = Passed(column, filter);
        for (std::size_t row = 0; row < passes.size(); ++row) {
            if (!passed[table_.NumberAt(row, column)]) passes[row] = false;
        }
    }
    Rows rows;
    for (std::uint32_t row = 0; row < passes.size(); ++row) {
        if (!passes[row]) continue;
        ++rows.byArchive[table_.ArchiveOf(row)];
        if (archives.empty() || archives.contains(table_.ArchiveOf(row))) {
            rows.shown.push_back(row);
        }
    }
    Sort(rows.shown);
    return rows;
}

const std::vector<std::uint32_t>& RowOrder::RanksOf(std::size_t column) {
    const TrendTable::Column& of = table_.Columns()[column];
    std::vector<std::uint32_t>& ranks = columns_[column].ranks;
    if (ranks.size() == of.values.size()) return ranks;

    // Nothing comes first, then numbers, then texts.
    struct Place {
        int kind = 0;
        double number = 0;
        std::optional<QCollatorSortKey> text{};
        ValueNumber value = 0;
    };
    QCollator collator(locale_);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<Place> places;
    places.reserve(of.values.size());
    for (ValueNumber value = 0; value < of.values.size(); ++value) {
        Place place{.value = value};
        if (const QString& text = TextOf(column, value); !text.isEmpty()) {
            const auto amount = AmountOf(of, of.values[value]);
            place.kind = amount ? 1 : 2;
            place.number = amount.value_or(0);
            if (!amount) place.text = collator.sortKey(text);
        }
        places.push_back(std::move(place));
    }
    const auto before = [](const Place& a, const Place& b) {
        if (a.kind != b.kind) return a.kind < b.kind;
        if (a.kind == 1) return a.number < b.number;
        return a.kind == 2 && a.text->compare(*b.text) < 0;
    };
    std::sort(places.begin(), places.end(), before);
    ranks.resize(of.values.size());
    std::uint32_t rank = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        // Equal values share a rank, so that further keys decide.
        if (i > 0 && before(places[i - 1], places[i])) ++rank;
        ranks[places[i].value] = rank;
    }
    return ranks;
}

void RowOrder::Sort(std::vector<std::uint32_t>& rows) {
    // By the last key first: each further pass keeps the order of equal rows.
    for (auto key = keys_.rbegin(); key != keys_.rend(); ++key) {
        const std::vector<std::uint32_t>& ranks = RanksOf(key->column);
        const std::size_t column = key->column;
        const bool upwards = key->order == Qt::AscendingOrder;
        std::stable_sort(rows.begin(), rows.end(), [&](std::uint32_t a, std::uint32_t b) {
            const std::uint32_t left = ranks[table_.NumberAt(a, column)];
            const std::uint32_t right = ranks[table_.NumberAt(b, column)];
            return upwards ? left < right : right < left;
        });
    }
}
