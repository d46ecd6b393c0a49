#include "controls/detail/ColumnLayout.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <QHeaderView>
#include <QScopedValueRollback>

#include "controls/detail/GridView.h"

namespace {

constexpr double kTwipsPerInch = 1440;

}  // namespace

ColumnLayout::ColumnLayout(GridView& view, const std::vector<GridColumn*>& columns)
    : view_(view), columns_(columns) {
    connect(view.horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int column, int, int pixels) { SectionResized(column, pixels); });
    connect(view.horizontalHeader(), &QHeaderView::sectionMoved, this, &ColumnLayout::SectionMoved);
}

double ColumnLayout::PixelsPerTwip() const {
    return view_.logicalDpiX() / kTwipsPerInch;
}

int ColumnLayout::IndexOf(const GridColumn& column) const {
    return static_cast<int>(std::find(columns_.begin(), columns_.end(), &column) -
                            columns_.begin());
}

void ColumnLayout::Apply() {
    wanted_.clear();
    const int count = static_cast<int>(columns_.size());
    frozen_ = frozen_ < count ? frozen_ : -1;
    // Columns that were there before keep their order; new ones take the source's place.
    std::vector<int> order;
    std::vector<int> added;
    for (int i = 0; i < count; ++i) {
        GridColumn* column = columns_[static_cast<std::size_t>(i)];
        if (column->placed_) {
            order.push_back(i);
        } else {
            added.push_back(i);
            column->placed_ = true;
            connect(column, &GridColumn::WidthChanged, this,
                    [this, column] { ApplyColumn(IndexOf(*column)); });
            connect(column, &GridColumn::VisibleChanged, this,
                    [this, column] { ApplyColumn(IndexOf(*column)); });
            connect(column, &GridColumn::Changed, this,
                    [this, column] { ApplyColumn(IndexOf(*column)); });
            connect(column, &GridColumn::OrderWanted, this,
                    [this, column](int position) { MoveTo(*column, position); });
        }
    }
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
        return columns_[static_cast<std::size_t>(a)]->Order() <
               columns_[static_cast<std::size_t>(b)]->Order();
    });
    for (const int column : added) {
        const auto place = std::min(static_cast<std::size_t>(column), order.size());
        order.insert(order.begin() + static_cast<std::ptrdiff_t>(place), column);
    }
    shown_ = std::move(order);
    ApplyOrder();
    for (int i = 0; i < count; ++i) ApplySection(i);
    ApplyFrozen();
    emit Changed();
}

void ColumnLayout::ApplyColumn(int column) {
    ApplySection(column);
    ApplyFrozen();
    emit Changed();
}

void ColumnLayout::ApplySection(int column) {
    const QScopedValueRollback applying(applying_, true);
    QHeaderView* header = view_.horizontalHeader();
    if (column >= header->count()) return;
    const GridColumn& how = *columns_[static_cast<std::size_t>(column)];
    header->setSectionResizeMode(column,
                                 how.AllowSizing() ? QHeaderView::Interactive : QHeaderView::Fixed);
    // A hidden section takes no width; a width of nothing hides it.
    const int pixels = static_cast<int>(std::lround(how.Width() * PixelsPerTwip()));
    const bool visible = how.Visible() && pixels > 0;
    header->setSectionHidden(column, !visible);
    if (visible) header->resizeSection(column, pixels);
    header->viewport()->update();
}

void ColumnLayout::ApplyOrder() {
    const QScopedValueRollback applying(applying_, true);
    QHeaderView* header = view_.horizontalHeader();
    for (int visual = 0; visual < static_cast<int>(shown_.size()); ++visual) {
        const int column = shown_[static_cast<std::size_t>(visual)];
        if (column < header->count()) header->moveSection(header->visualIndex(column), visual);
    }
    for (int visual = 0; visual < static_cast<int>(shown_.size()); ++visual) {
        const int column = shown_[static_cast<std::size_t>(visual)];
        columns_[static_cast<std::size_t>(column)]->SetShownOrder(visual);
    }
    ApplyFrozen();
}

void ColumnLayout::ApplyFrozen() {
    std::vector<int> strip;
    const auto last = std::find(shown_.begin(), shown_.end(), frozen_);
    if (last != shown_.end() && view_.horizontalHeader()->count() >= std::ssize(shown_)) {
        std::copy_if(shown_.begin(), last + 1, std::back_inserter(strip),
                     [this](int column) { return !view_.isColumnHidden(column); });
    }
    view_.SetFrozen(std::move(strip));
}

void ColumnLayout::SetFrozen(int column) {
    frozen_ = column;
    ApplyFrozen();
    emit Changed();
}

void ColumnLayout::SetShown(std::vector<int> order) {
    wanted_.clear();
    shown_ = std::move(order);
    ApplyOrder();
    emit Changed();
}

void ColumnLayout::MoveTo(GridColumn& column, int position) {
    if (position < 0 || position >= static_cast<int>(columns_.size())) return;
    std::erase_if(wanted_, [&](const auto& want) { return want.first == &column; });
    wanted_.emplace_back(&column, position);
    constexpr int kFree = -1;
    std::vector<int> order(columns_.size(), kFree);
    std::vector<bool> placed(columns_.size(), false);
    for (auto want = wanted_.rbegin(); want != wanted_.rend(); ++want) {
        int& slot = order[static_cast<std::size_t>(want->second)];
        if (slot != kFree) continue;
        slot = IndexOf(*want->first);
        placed[static_cast<std::size_t>(slot)] = true;
    }
    auto slot = order.begin();
    for (const int other : shown_) {
        if (placed[static_cast<std::size_t>(other)]) continue;
        slot = std::find(slot, order.end(), kFree);
        *slot = other;
    }
    shown_ = std::move(order);
    ApplyOrder();
    emit Changed();
}

void ColumnLayout::SectionResized(int column, int pixels) {
    if (applying_ || pixels == 0 || column >= static_cast<int>(columns_.size())) return;
    columns_[static_cast<std::size_t>(column)]->SetShownWidth(pixels / PixelsPerTwip());
    emit Changed();
}

void ColumnLayout::SectionMoved() {
    if (applying_) return;
    wanted_.clear();
    const QHeaderView* header = view_.horizontalHeader();
    shown_.clear();
    for (int visual = 0; visual < header->count(); ++visual) {
        const int column = header->logicalIndex(visual);
        shown_.push_back(column);
        columns_[static_cast<std::size_t>(column)]->SetShownOrder(visual);
    }
    ApplyFrozen();
    emit Changed();
}
