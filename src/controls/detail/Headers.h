#pragma once

#include <memory>
#include <QHeaderView>

class FilterRow;
class GridView;

/// The headings of the columns, with the sort order of the grid's own. Qt's sort indicator would
/// turn with every click on a heading.
class CaptionHeader final : public QHeaderView {
    Q_OBJECT
public:
    explicit CaptionHeader(GridView& grid, QWidget* parent);
    ~CaptionHeader() override;

    /// A field under each heading that narrows the rows by its column; see GridSplit::SetFilterRow.
    void ShowFilters(bool show);
    [[nodiscard]] FilterRow* Filters() const { return filters_.get(); }
    void PlaceFilters();
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void updateGeometries() override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const override;

private:
    GridView& grid_;
    std::unique_ptr<FilterRow> filters_;
};

/// The record selectors: a button for each row that shows whether the row is current or being
/// edited.
class RecordHeader final : public QHeaderView {
    Q_OBJECT
public:
    explicit RecordHeader(GridView& grid);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    bool viewportEvent(QEvent* event) override;

private:
    enum class Mark { None, Current, Edited };
    [[nodiscard]] Mark MarkOf(int row) const;

    GridView& grid_;
};
