#include "editor/GridColumns.h"

#include <algorithm>
#include <initializer_list>

#include "ado/AdoError.h"
#include "ado/Recordset.h"
#include "cells/TrendColumns.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace GridColumns {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kUnitTable = u"Units";  // what follows the prefix of the table's kind

constexpr double kArchiveWidth = 3000;  // twips

}  // namespace

std::vector<RecordsetModel::Column> OfArchives() {
    return {{"ID"}, {"Name"}, {"Comment"}};
}

void SetUpArchives(GridSplit& archives, const MResources::TextTable& texts) {
    archives.SetLocked(true);
    archives.SetDoubleClickEdits(false);
    archives.SetCaption(texts.GetText(MResourceTable::kTextArchivesNode));
    // The key keeps its place in front of the name, where the layouts of old have it.
    if (GridColumn* key = archives.Column(u"ID")) key->SetVisible(false);
    if (GridColumn* name = archives.Column(u"Name")) {
        name->SetCaption(texts.GetText(MResourceTable::kTextTrendName));
        name->SetWidth(kArchiveWidth);
    }
    if (GridColumn* comment = archives.Column(u"Comment")) {
        comment->SetCaption(texts.GetText(MResourceTable::kTextTrendComment));
        comment->SetWidth(kArchiveWidth);
    }
}

void SetUpTrends(GridSplit& trends, const MResources::TextTable& texts) {
    trends.SetDoubleClickEdits(false);
    for (int i = 0; i < trends.ColumnCount(); ++i) {
        GridColumn* column = trends.ColumnAt(i);
        const bool isSetting = IsForUser(*column);
        if (!isSetting) column->SetVisible(false);
        TrendColumns::SetUp(
            *column,
            isSetting ? project::FindTrendColumn(projectdb::ToUtf8(column->DataField())) : nullptr,
            texts);
    }
}

void SetUpUnits(GridSplit& trends, ado::Connection& project) {
    GridColumn* column = trends.Column(u"VUnitID");
    if (column == nullptr) return;
    GridValueItems items;
    try {
        const std::vector<std::string> tables = project.TableNames();
        const auto table = std::find_if(tables.begin(), tables.end(), [](const std::string& name) {
            return projectdb::ToQString(name).endsWith(kUnitTable, Qt::CaseInsensitive);
        });
        if (table == tables.end()) return;
        ado::Recordset units;
        units.Open(*table, project, ado::CommandType::Table);
        const std::vector<ado::Field>& fields = units.Fields();
        const auto text = std::find_if(fields.begin(), fields.end(), [](const ado::Field& field) {
            return field.type == ado::DataType::VarWChar;
        });
        if (text == fields.end()) return;
        const auto textField = static_cast<std::size_t>(text - fields.begin());
        const std::size_t idField = units.FieldIndex("ID");
        for (; !units.IsEOF(); units.MoveNext()) {
            items.append({ado::ToLong(units.Get(idField)),
                          projectdb::ToQString(ado::ToText(units.Get(textField)))});
        }
    } catch (const ado::AdoError& error) {
        qWarning("units: %s", error.what());
        return;
    }
    column->SetValueItems(items);
}

bool IsForUser(const GridColumn& column) {
    return TrendColumns::Fields().contains(column.DataField());
}

QString FormatOrders(const QList<int>& columns) {
    QString text;
    for (const int column : columns) text += u',' + QString::number(column);
    return text;
}

QList<int> ParseOrders(QStringView text, int count) {
    QList<int> columns;
    for (const QStringView part : text.split(u',', Qt::SkipEmptyParts)) {
        bool isNumber = false;
        const int column = part.trimmed().toInt(&isNumber);
        if (isNumber && column >= 0 && column < count && !columns.contains(column)) {
            columns.append(column);
        }
    }
    return columns;
}

}  // namespace GridColumns
