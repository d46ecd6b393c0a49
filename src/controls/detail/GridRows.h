#pragma once

#include <functional>
#include <optional>
#include <QAbstractTableModel>
#include <QLocale>
#include <QPointer>
#include <QString>
#include <QStringMatcher>
#include <vector>

#include "controls/GridColumn.h"
#include "controls/GridSource.h"
#include "controls/GridText.h"

/// The rows of a source as a split shows them: sorted once, narrowed, values as texts. What is
/// changed or added afterwards stays where it stands until the next Sort, SetFilterText or reset.
class GridRows final : public QAbstractTableModel {
    Q_OBJECT
public:
    /// `columns` is borrowed and has an entry for each column of the source.
    explicit GridRows(const std::vector<GridColumn*>& columns, QObject* parent = nullptr);

    void SetSource(GridSource* source);
    [[nodiscard]] GridSource* Source() const { return source_; }
    void SetTexts(std::function<QString(GridText)> texts) { texts_ = std::move(texts); }
    [[nodiscard]] QString Text(GridText text) const { return texts_ ? texts_(text) : QString(); }

    [[nodiscard]] GridRowId IdAt(int row) const;
    /// -1 when the row is not shown.
    [[nodiscard]] int RowOf(GridRowId id) const;
    void FetchAll();
    /// Tells views that captions or texts of all rows are others.
    void Refresh();

    /// -1: the source's order. `further`: see GridSource::SortRows.
    void Sort(int column, Qt::SortOrder order, bool further = false);
    /// How the rows are ordered by a column; nothing where they are not.
    [[nodiscard]] std::optional<Qt::SortOrder> OrderOf(int column) const;
    [[nodiscard]] int SortColumn() const noexcept { return sortColumn_; }
    [[nodiscard]] Qt::SortOrder Order() const noexcept { return order_; }
    void SetFilterText(const QString& text);
    [[nodiscard]] const QString& FilterText() const noexcept { return filter_; }
    /// The row that stays shown whatever the filter says; the one with a pending edit.
    void Pin(GridRowId id) { pinned_ = id; }

    [[nodiscard]] QString ShownText(int sourceRow, int column) const;
    [[nodiscard]] QString EditText(int sourceRow, int column) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

signals:
    /// The last moment to ask where rows stand. `sourceReset`: they may become others.
    void AboutToRebuild(bool sourceReset);
    /// The source's columns are new; the owner brings its own up to date.
    void ColumnsReset();
    void Rebuilt(bool sourceReset);

private:
    void Rebuild(const std::function<void()>& change);
    void Compute();
    void SortShown();
    /// What the cell counts as where numbers go before texts; nothing where it is none.
    [[nodiscard]] std::optional<double> NumberAt(int sourceRow, int column) const;
    [[nodiscard]] bool Matches(int sourceRow, const QStringMatcher& matcher) const;
    /// Whether the rows stand as the source has them.
    [[nodiscard]] bool InSourceOrder() const { return sortColumn_ < 0 || sourceSorts_; }
    [[nodiscard]] int PlaceOf(int sourceRow) const;
    void SourceInserted(int first, int last);
    void SourceAboutToRemove(int first, int last);
    void SourceRemoved(int first, int last);
    void SourceChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);

    const std::vector<GridColumn*>& columns_;
    QPointer<GridSource> source_;
    std::function<QString(GridText)> texts_;
    std::vector<int> shown_;  // source rows in the order shown; ascending unless sorted
    int sortColumn_ = -1;
    Qt::SortOrder order_ = Qt::AscendingOrder;
    QString filter_;
    GridRowId pinned_ = kNoGridRow;
    QLocale locale_;
    bool sourceSorts_ = false;
    bool rebuilding_ = false;
};
