#pragma once

#include <QStyledItemDelegate>

namespace replace {

/// Paints the values of hits with the parts marked that have been found, and those that are new.
class HitDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

}  // namespace replace
