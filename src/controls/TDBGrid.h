#pragma once

#include <array>
#include <functional>
#include <QWidget>

#include "controls/GridSplit.h"
#include "controls/GridText.h"

class FontProperties;
class QSplitter;

/// A data grid with two splits side by side, each over a source of its own, as an engineer uses it
/// all day: cells are edited in place, rows selected by their record selectors, columns moved and
/// resized, sorted and narrowed.
///
/// Keys, as in a spreadsheet:
///   typing, Backspace   edit, replacing the value        F2, (double click)  edit the value
///   Enter, Shift+Enter  commit, down or up                Tab, Shift+Tab      commit, right or
///   Up, Down            commit, that way                                      left; an edit goes
///   on Esc                 the stored value again            Del                 clear the cells
///   Ctrl+Enter          commit to all selected cells
///   Space               the chooser of its column         Alt+Down            the drop-down
///   Shift+Up/Down       select cells of several rows      Shift+Space         select the row
///   Shift+Left/Right    and of several columns
///   Ctrl+A              select all rows shown             Ctrl+O              sort
///   Ctrl+PageUp/Down    PageRequested                     F6                  the other split
/// A click on a heading sorts, a double click on its edge fits the column to what it shows.
/// All other keys go on to the window. Nothing deletes a row.
///
/// The grid shows no messages and knows no texts: those it needs are asked of SetTexts.
class TDBGrid final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QObject* Font READ Font CONSTANT)
    Q_PROPERTY(QObject* HeadFont READ HeadFont CONSTANT)
    Q_PROPERTY(bool RecordSelectors READ RecordSelectors WRITE SetRecordSelectors)
    Q_PROPERTY(int Split READ Split WRITE SetSplit)
    Q_PROPERTY(double SplitWidth READ SplitWidth WRITE SetSplitWidth)

public:
    static constexpr int kSplitCount = 2;

    explicit TDBGrid(QWidget* parent = nullptr);
    ~TDBGrid() override;

    /// GridSplit 0 or 1; nullptr for other numbers.
    [[nodiscard]] Q_INVOKABLE QObject* Splits(int split) const;
    [[nodiscard]] GridSplit& SplitAt(int split) const;

    /// The texts of the interface; asked for again whenever one is needed.
    void SetTexts(const std::function<QString(GridText)>& texts);

    /// FontProperties of the cells and of the headings. The headings follow the cells until they
    /// are given a font of their own.
    [[nodiscard]] QObject* Font() const;
    [[nodiscard]] QObject* HeadFont() const;
    [[nodiscard]] bool RecordSelectors() const;
    void SetRecordSelectors(bool show);

    /// The split that has, or last had, the keyboard.
    [[nodiscard]] int Split() const noexcept { return split_; }
    void SetSplit(int split);
    /// Width of split 0 in twips, as set until the user moves the bar; a window that is too small
    /// for it gives it back when it grows. 0, as long as neither has been done: what its columns
    /// need, up to 40 % of the grid. Values that are not above 0 are ignored.
    [[nodiscard]] double SplitWidth() const noexcept { return splitWidth_; }
    void SetSplitWidth(double twips);
    /// Holds the two views; its handle is the bar between them.
    [[nodiscard]] QSplitter* Splitter() const noexcept { return splitter_; }

    /// GridSplit::CommitPendingEdit of both.
    bool CommitPendingEdit();

signals:
    /// Another split has the keyboard now.
    void SplitChange(int split);
    /// Ctrl+PageUp (-1), Ctrl+PageDown (+1): the previous or next archive.
    void PageRequested(int step);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void ApplyFonts();
    void NameViews();
    void PlaceBar();
    [[nodiscard]] int NeededWidth() const;

    QSplitter* splitter_ = nullptr;
    std::array<GridSplit*, kSplitCount> splits_{};
    FontProperties* font_ = nullptr;
    FontProperties* headFont_ = nullptr;
    bool ownHeadFont_ = false;
    int split_ = 1;
    double splitWidth_ = 0;
};
