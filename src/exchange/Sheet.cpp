#include "exchange/Sheet.h"

#include <algorithm>

#include "project/FieldParts.h"
#include "project/Number.h"
#include "project/Rows.h"

namespace exchange {
namespace {

using Role = SheetColumn::Role;

constexpr int kArchiveCaption = 201;
constexpr int kDisplayTextCaption = 403;

std::u16string Widened(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

}  // namespace

Sheet::Sheet(ado::Connection& connection, SheetKind kind) : kind_(kind) {
    project::Rows rows(connection);
    const bool isTrends = kind == SheetKind::Trends;
    const ado::Recordset& own = isTrends ? rows.Trends() : rows.Archives();
    const auto fieldOf = [&](std::string_view name) { return own.Fields()[own.FieldIndex(name)]; };
    columns_.push_back({.role = Role::Id, .table = TableOf(kind), .field = fieldOf("ID")});
    if (isTrends) {
        columns_.push_back({.role = Role::Archive,
                            .table = TableOf(kind),
                            .field = fieldOf("ArchiveID"),
                            .caption = kArchiveCaption});
    }
    const auto settings = isTrends ? project::TrendColumns() : project::ArchiveColumns();
    AddOwn(own, settings.front());  // the name
    for (const ado::Field& field : rows.Texts().Fields()) {
        if (!project::IsLanguageColumn(field.name)) continue;
        columns_.push_back({.role = Role::Text,
                            .table = project::kTextTable,
                            .field = field,
                            .caption = kDisplayTextCaption});
    }
    for (const project::Column& column : settings.subspan(1)) AddOwn(own, column);
}

void Sheet::AddOwn(const ado::Recordset& rows, const project::Column& column) {
    if (column.caption == 0 || !project::HasField(rows, column.name)) return;
    const ado::Field& field = rows.Fields()[rows.FieldIndex(column.name)];
    if (!project::IsText(field.type) && !project::IsNumber(field.type)) return;
    if (kind_ == SheetKind::Archives && column.name == "Type") return AddTypeBits(field, column);
    columns_.push_back({.role = Role::Setting,
                        .table = TableOf(kind_),
                        .field = field,
                        .caption = column.caption,
                        .meaning = &column,
                        .codes = column.codes});
}

void Sheet::AddTypeBits(const ado::Field& field, const project::Column& column) {
    for (const project::FieldPart& part : project::PartsOfType()) {
        columns_.push_back({.role = Role::Bits,
                            .table = TableOf(kind_),
                            .field = field,
                            .caption = part.caption,
                            .meaning = &column,
                            .codes = part.codes,
                            .mask = part.mask});
    }
}

std::u16string Sheet::Heading(std::size_t column, const words::Language& language) const {
    const SheetColumn& it = columns_[column];
    const std::u16string name = Widened(it.field.name);
    if (it.caption == 0) return name;
    const std::u16string text = language.Text(it.caption);
    return it.role == Role::Text ? text + u' ' + name : text;
}

std::optional<std::size_t> Sheet::FindHeading(std::u16string_view heading) const {
    const std::u16string wanted = Folded(heading);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        for (const words::Language& language : words::Languages()) {
            if (Folded(Heading(i, language)) == wanted) return i;
        }
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const bool isWhole = columns_[i].role != Role::Bits && columns_[i].role != Role::Archive;
        if (isWhole && Folded(Widened(columns_[i].field.name)) == wanted) return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> Sheet::FindRole(Role role) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [&](const SheetColumn& each) { return each.role == role; });
    if (found == columns_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - columns_.begin());
}

std::optional<std::size_t> Sheet::FindField(std::string_view name) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(), [&](const SheetColumn& each) {
        return each.field.name == name;
    });
    if (found == columns_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - columns_.begin());
}

std::u16string NameOf(SheetKind kind, const words::Language& language) {
    return language.Text(kind == SheetKind::Trends ? "Exchange.Trends" : "Exchange.Archives");
}

std::string_view TableOf(SheetKind kind) {
    return kind == SheetKind::Trends ? project::kTrendTable : project::kArchiveTable;
}

std::u16string Folded(std::u16string_view text) {
    std::u16string folded(project::WithoutBlanks(text));
    for (char16_t& c : folded) {
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
    }
    return folded;
}

}  // namespace exchange
