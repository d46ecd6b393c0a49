#pragma once

#include <QList>
#include <QObject>
#include <utility>
#include <vector>

#include "controls/GridColumn.h"

class GridView;

/// Keeps the columns' widths, visibility and positions and those of the view's headings the same,
/// whoever changes them.
class ColumnLayout final : public QObject {
    Q_OBJECT
public:
    /// Both are borrowed and outlive the layout.
    ColumnLayout(GridView& view, const std::vector<GridColumn*>& columns);

    /// The columns are new ones, or the view has lost its headings' sizes in a reset.
    void Apply();
    /// Source columns in the order shown.
    [[nodiscard]] const std::vector<int>& Shown() const noexcept { return shown_; }
    /// `order` names each column once.
    void SetShown(std::vector<int> order);
    void MoveTo(GridColumn& column, int position);
    /// The last one (source's number) of the columns that stay in view; -1: none do.
    void SetFrozen(int column);
    [[nodiscard]] int Frozen() const noexcept { return frozen_; }

signals:
    void Changed();

private:
    void ApplyColumn(int column);
    void ApplySection(int column);
    void ApplyOrder();
    void ApplyFrozen();
    void SectionResized(int column, int pixels);
    void SectionMoved();
    [[nodiscard]] double PixelsPerTwip() const;
    [[nodiscard]] int IndexOf(const GridColumn& column) const;

    GridView& view_;
    const std::vector<GridColumn*>& columns_;
    std::vector<int> shown_;
    // Positions asked for since the user last moved a column, the latest one last. All of them
    // hold as far as they can: a settings file sets one column after another.
    std::vector<std::pair<const GridColumn*, int>> wanted_;
    int frozen_ = -1;
    bool applying_ = false;
};
