#include "editor/ConflictTexts.h"

#include <algorithm>
#include <QLocale>

#include "cells/CellText.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace MResourceTable;
using Kind = project::Conflict::Kind;

const project::Column* ColumnOf(const project::Conflict& conflict) {
    if (conflict.table == project::kTrendTable) return project::FindTrendColumn(conflict.column);
    if (conflict.table == project::kArchiveTable) {
        return project::FindArchiveColumn(conflict.column);
    }
    return nullptr;
}

QString What(const project::Conflict& conflict, const MResources::TextTable& texts) {
    int text = kTextConflictRow;
    if (conflict.table == project::kArchiveTable) text = kTextConflictArchive;
    if (conflict.table == project::kTrendTable) text = kTextConflictTrend;
    if (conflict.table == project::kTextTable) text = kTextConflictText;
    const project::Column* column = ColumnOf(conflict);
    const QString heading = column != nullptr && column->caption != 0
                                ? texts.GetText(column->caption)
                                : projectdb::ToQString(conflict.column);
    return texts.GetText(text, {{u"table", projectdb::ToQString(conflict.table)},
                                {u"name", projectdb::ToQString(conflict.name)},
                                {u"column", heading}});
}

QString Value(const project::Conflict& conflict, const ado::Value& value,
              const MResources::TextTable& texts) {
    const project::Column* column = ColumnOf(conflict);
    if (column != nullptr) {
        const auto code = std::ranges::find_if(column->codes, [&](const project::Code& known) {
            return value == ado::Value(known.code);
        });
        if (code != column->codes.end()) return texts.GetText(code->text);
    }
    const QString text = CellText(value, QLocale(), texts);
    return text.isEmpty() ? texts.GetText(kTextConflictEmpty) : text;
}

}  // namespace

QList<FConflict::Row> ConflictTexts::RowsOf(const std::vector<project::Conflict>& conflicts,
                                            const MResources::TextTable& texts) {
    QList<FConflict::Row> rows;
    for (const project::Conflict& conflict : conflicts) {
        FConflict::Row row{What(conflict, texts), {}, {}, {}};
        switch (conflict.kind) {
            case Kind::Field:
                row.was = Value(conflict, conflict.was, texts);
                row.theirs = Value(conflict, conflict.theirs, texts);
                row.mine = Value(conflict, conflict.mine, texts);
                break;
            case Kind::RowGone:
                row.theirs = texts.GetText(kTextConflictGone);
                row.mine = texts.GetText(kTextConflictBringBack);
                break;
            case Kind::RowChanged:
            case Kind::RowInUse:
                row.theirs = texts.GetText(kTextConflictKeep);
                row.mine = texts.GetText(kTextConflictDelete);
                break;
            case Kind::NumberTaken:
                row.theirs =
                    texts.GetText(kTextConflictTaken, {{u"id", QString::number(conflict.id)}});
                row.mine = texts.GetText(kTextConflictNewNumber);
                break;
        }
        rows += row;
    }
    return rows;
}
