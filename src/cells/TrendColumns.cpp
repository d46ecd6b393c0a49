#include "cells/TrendColumns.h"

#include "projectdb/Text.h"

namespace TrendColumns {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kGeneralNumber = u"General Number"_s;

}  // namespace

void SetUp(GridColumn& column, const project::Column* known, const MResources::TextTable& texts) {
    if (column.Kind() == GridKind::Number || column.Kind() == GridKind::Integer) {
        column.SetNumberFormat(kGeneralNumber);
    }
    if (known == nullptr || known->caption == 0) return;
    if (known->kind == project::Kind::Limit) column.SetNumberFormat(kGeneralNumber);
    column.SetCaption(texts.GetText(known->caption));
    GridValueItems items;
    for (const project::Code& code : known->codes) {
        items.append({code.code, texts.GetText(code.text)});
    }
    if (!items.isEmpty()) column.SetValueItems(items);
    const bool isChosen =
        known->kind == project::Kind::Colour || known->kind == project::Kind::Variable;
    if (isChosen) column.SetButton(true);
}

QList<QString> Fields() {
    static const QList<QString> fields = [] {
        QList<QString> names;
        for (const project::Column& column : project::TrendColumns()) {
            if (column.caption != 0) names.append(projectdb::ToQString(column.name));
        }
        return names;
    }();
    return fields;
}

}  // namespace TrendColumns
