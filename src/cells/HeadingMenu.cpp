#include "cells/HeadingMenu.h"

#include <QMenu>

#include "texts/MResourceTable.h"

namespace HeadingMenu {
namespace {

using namespace Qt::Literals::StringLiterals;

/// What tells a row from the others must not go out of sight.
bool CanBeHidden(const GridColumn& column) {
    return column.DataField() != u"Name";
}

QString CaptionOf(const GridSplit& split, int column) {
    const QString& caption = split.ColumnAt(column)->Caption();
    return QString(caption).replace(u'&', u"&&"_s);
}

void AddSorting(QMenu& menu, GridSplit& split, int column, const MResources::TextTable& texts) {
    const auto add = [&](int text, const QString& name, bool checked, const auto& run) {
        QAction* action = menu.addAction(texts.GetText(text), &split, run);
        action->setObjectName(name);
        action->setCheckable(true);
        action->setChecked(checked);
    };
    const QString field = split.ColumnAt(column)->DataField();
    const bool sorted = split.SortField() == field;
    const auto sort = [&split, field](Qt::SortOrder order) {
        return [&split, field, order] {
            if (split.CommitPendingEdit()) split.Sort(field, order);
        };
    };
    const bool upwards = split.SortOrder() == Qt::AscendingOrder;
    add(MResourceTable::kTextSortUpwards, u"mnuHeadUp"_s, sorted && upwards,
        sort(Qt::AscendingOrder));
    add(MResourceTable::kTextSortDownwards, u"mnuHeadDown"_s, sorted && !upwards,
        sort(Qt::DescendingOrder));
    add(MResourceTable::kTextUnsorted, u"mnuHeadUnsorted"_s, split.SortField().isEmpty(),
        [&split] { split.ClearSort(); });
}

/// Shows a column behind `neighbour`, where the user has asked for it; -1: at its own place.
void Show(GridSplit& split, int column, int neighbour) {
    GridColumn& shown = *split.ColumnAt(column);
    shown.SetAllowSizing(true);
    shown.SetVisible(true);
    if (neighbour < 0) return;
    QList<int> order = split.ColumnOrders();
    order.removeAll(column);
    order.insert(order.indexOf(neighbour) + 1, column);
    split.SetColumnOrders(order);
}

void AddVisibility(QMenu& menu, GridSplit& split, int column, const MResources::TextTable& texts,
                   const IsForUser& isForUser) {
    if (column >= 0) {
        QAction* hide = menu.addAction(texts.GetText(MResourceTable::kTextHideColumn), &split,
                                       [&split, column] {
                                           if (!split.CommitPendingEdit()) return;
                                           split.ColumnAt(column)->SetVisible(false);
                                       });
        hide->setObjectName(u"mnuHeadHide"_s);
        hide->setEnabled(CanBeHidden(*split.ColumnAt(column)));
    }
    QMenu* show = menu.addMenu(texts.GetText(MResourceTable::kTextShowColumn));
    show->setObjectName(u"mnuHeadShow"_s);
    for (const int hidden : split.ColumnOrders()) {
        if (split.ColumnAt(hidden)->Visible() || !isForUser(*split.ColumnAt(hidden))) continue;
        QAction* action =
            show->addAction(CaptionOf(split, hidden), &split,
                            [&split, hidden, column] { Show(split, hidden, column); });
        action->setObjectName(u"mnuHeadShow(%1)"_s.arg(split.ColumnAt(hidden)->DataField()));
    }
    show->setEnabled(!show->isEmpty());
}

void AddWidths(QMenu& menu, GridSplit& split, int column, const MResources::TextTable& texts) {
    if (column >= 0) {
        menu.addAction(texts.GetText(MResourceTable::kTextFitColumn), &split,
                       [&split, column] { split.FitColumn(column); })
            ->setObjectName(u"mnuHeadFit"_s);
    }
    menu.addAction(texts.GetText(MResourceTable::kTextFitAllColumns), &split,
                   [&split] { split.FitAllColumns(); })
        ->setObjectName(u"mnuHeadFitAll"_s);
}

void AddFreezing(QMenu& menu, GridSplit& split, int column, const MResources::TextTable& texts) {
    if (column >= 0) {
        const QString field = split.ColumnAt(column)->DataField();
        menu.addAction(texts.GetText(MResourceTable::kTextFreezeColumns), &split,
                       [&split, field] { split.SetFrozenColumn(field); })
            ->setObjectName(u"mnuHeadFreeze"_s);
    }
    QAction* release = menu.addAction(texts.GetText(MResourceTable::kTextReleaseColumns), &split,
                                      [&split] { split.SetFrozenColumn({}); });
    release->setObjectName(u"mnuHeadRelease"_s);
    release->setEnabled(!split.FrozenColumn().isEmpty());
}

}  // namespace

void Fill(QMenu& menu, GridSplit& split, int column, const MResources::TextTable& texts,
          const IsForUser& isForUser) {
    if (split.ColumnAt(column) == nullptr) column = -1;
    if (column >= 0) {
        AddSorting(menu, split, column, texts);
        menu.addSeparator();
    }
    AddVisibility(menu, split, column, texts, isForUser);
    AddWidths(menu, split, column, texts);
    menu.addSeparator();
    AddFreezing(menu, split, column, texts);
}

}  // namespace HeadingMenu
