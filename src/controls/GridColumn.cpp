#include "controls/GridColumn.h"

#include <algorithm>

namespace {

constexpr double kWidestTwips = 32767;  // what a stored width can hold

}  // namespace

GridColumn::GridColumn(QString dataField, GridKind kind, QObject* parent)
    : QObject(parent), dataField_(std::move(dataField)), kind_(kind) {
    setObjectName(dataField_);
}

void GridColumn::SetCaption(const QString& caption) {
    if (caption == caption_) return;
    caption_ = caption;
    emit Changed();
}

void GridColumn::SetWidth(double twips) {
    if (!(twips >= 0)) twips = 0;  // also what is no number
    twips = std::min(twips, kWidestTwips);
    if (twips == width_) return;
    width_ = twips;
    emit WidthChanged();
}

void GridColumn::SetShownWidth(double twips) {
    width_ = twips;
}

void GridColumn::SetVisible(bool visible) {
    if (visible == visible_) return;
    visible_ = visible;
    emit VisibleChanged();
}

void GridColumn::SetAllowSizing(bool allow) {
    if (allow == allowSizing_) return;
    allowSizing_ = allow;
    emit Changed();
}

void GridColumn::SetOrder(int position) {
    emit OrderWanted(position);
}

void GridColumn::SetShownOrder(int position) {
    if (position == order_) return;
    order_ = position;
    emit OrderChanged();
}

void GridColumn::SetButton(bool button) {
    if (button == button_) return;
    button_ = button;
    emit Changed();
}

void GridColumn::SetLocked(bool locked) {
    if (locked == locked_) return;
    locked_ = locked;
    emit Changed();
}

void GridColumn::SetNumberFormat(const QString& format) {
    if (format == numberFormat_) return;
    numberFormat_ = format;
    emit Changed();
}

void GridColumn::SetValueItems(const GridValueItems& items) {
    if (items == valueItems_) return;
    valueItems_ = items;
    emit Changed();
}

QString GridColumn::ValueText(const QVariant& stored) const {
    bool ok = false;
    const int code = stored.toInt(&ok);
    if (!ok || stored.isNull()) return {};
    for (const GridValueItem& item : valueItems_) {
        if (item.code == code) return item.text;
    }
    return {};
}
