#include "editor/TrendRows.h"

#include "project/Rows.h"
#include "projectdb/Failure.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

/// The column of the table of trends that a field holds; null when it is another's.
const project::Column* KnownColumn(const ado::Field& field) {
    return field.baseTable == project::kTrendTable ? project::FindTrendColumn(field.baseColumn)
                                                   : nullptr;
}

/// Whether a trend has that setting of its own: keys are given to it.
bool IsSettingField(const ado::Field& field) {
    if (field.baseTable != project::kTrendTable) return false;
    const project::Column* column = KnownColumn(field);
    return column != nullptr ? column->caption != 0 : field.baseColumn != project::kKeyColumn;
}

GridKind KindOf(const ado::Field& field) {
    using ado::DataType;
    const project::Column* known = KnownColumn(field);
    if (known != nullptr && known->kind == project::Kind::Colour) return GridKind::Colour;
    switch (field.type) {
        case DataType::SmallInt:
        case DataType::Integer:
        case DataType::UnsignedTinyInt:
            return GridKind::Integer;
        case DataType::Single:
        case DataType::Double:
        case DataType::Currency:
        case DataType::Numeric:
            return GridKind::Number;
        default:
            return GridKind::Text;
    }
}

ado::Value ToValue(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::UnknownType:
            return ado::Null{};
        case QMetaType::QString:
            return projectdb::ToUtf16(value.toString());
        case QMetaType::Int:
            return static_cast<std::int32_t>(value.toInt());
        default:
            // The field takes what fits into it and refuses the rest.
            return value.toDouble();
    }
}

}  // namespace

TrendRows::TrendRows(const MResources::TextTable& texts, INameRegistry& names, Refusal refuse,
                     Settle settle, QObject* parent)
    : RecordsetModel(texts, parent),
      names_(names),
      refuse_(std::move(refuse)),
      settle_(std::move(settle)) {}

void TrendRows::AttachTrends(ado::Recordset& trends, const QVariant& archive) {
    std::vector<Column> columns;
    for (const ado::Field& field : trends.Fields()) {
        const project::Column* known = KnownColumn(field);
        const bool isKey = known != nullptr && known->kind == project::Kind::Key;
        const bool editable = IsSettingField(field) && !isKey;
        columns.push_back({field.name, KindOf(field), editable});
    }
    Attach(trends, std::move(columns), archive);
}

bool TrendRows::IsSetting(int column) const {
    return IsSettingField(FieldAt(column));
}

bool TrendRows::IsLanguage(int column) const {
    const ado::Field& field = FieldAt(column);
    return field.baseTable == project::kTextTable && project::IsLanguageColumn(field.baseColumn);
}

GridCommit TrendRows::CommitCell(GridRowId id, int column, const QVariant& value) {
    const int row = RowOf(id);
    if (row < 0) return GridCommit::Failed(kRowChanged, {});
    if (Columns()[static_cast<std::size_t>(column)].field != "Name") {
        return Write(row, column, ToValue(value));
    }
    const QString stored = projectdb::ToQString(ado::ToText(ValueAt(row, column)));
    const QString name = value.toString();
    if (!AcceptName(stored, name)) return GridCommit::Refused();
    const GridCommit commit = Write(row, column, ToValue(value));
    if (commit.outcome != GridCommit::Outcome::Stored) {
        names_.ChangeNameInGroup(projectdb::kTrendNames, name, stored);
    }
    return commit;
}

bool TrendRows::AcceptName(const QString& stored, const QString& name) {
    if (name.trimmed().isEmpty()) {
        refuse_(MResourceTable::kTextNameRequired);
        return false;
    }
    // Another spelling of the own name is no second use of it.
    if (!names_.IsSameName(name, stored) && names_.TestNameInGroup(projectdb::kTrendNames, name)) {
        refuse_(MResourceTable::kTextNameInUse);
        return false;
    }
    names_.ChangeNameInGroup(projectdb::kTrendNames, stored, name);
    return true;
}

std::optional<GridCommit> TrendRows::Join(int row, int column, const ado::Value& value) {
    project::Conflict conflict;
    conflict.was = ValueAt(row, column);
    TakeOver(row);
    conflict.theirs = ValueAt(row, column);
    conflict.mine = value;
    if (conflict.theirs == value) return GridCommit::Stored();
    if (conflict.theirs == conflict.was) return std::nullopt;
    conflict.table = FieldAt(column).baseTable;
    conflict.column = FieldAt(column).baseColumn;
    conflict.name = project::NameOf(Rows());
    const std::optional<bool> mine = settle_(conflict);
    if (!mine) return GridCommit::Refused();
    return *mine ? std::nullopt : std::optional(GridCommit::Stored());
}

GridCommit TrendRows::Write(int row, int column, const ado::Value& value) {
    try {
        MoveTo(row);
        Rows().Resync();  // it may have been the current one already, as it was then
        while (HasChanged(row)) {
            if (const auto end = Join(row, column, value)) return *end;
            Rows().Resync();  // while the user was asked it may have become another
        }
        const std::string& field = Columns()[static_cast<std::size_t>(column)].field;
        if (field == "Name") {
            project::RenameTrendText(Rows(), project::NameOf(Rows()), ado::ToText(value));
        }
        Rows().Set(field, value);
        Rows().Update();
        TakeOver(row);
        return GridCommit::Stored();
    } catch (const ado::AdoError& error) {
        const projectdb::Failure failure = projectdb::Failure::Current();
        Rows().CancelUpdate();
        const bool changed = error.Number() == ado::ErrorNumber::kRowNotLocated;
        return GridCommit::Failed(changed ? kRowChanged : error.Number(), failure.Text(),
                                  failure.Details());
    }
}
