#pragma once

#include <functional>
#include <memory>
#include <QPointer>
#include <QWidget>

#include "cells/CellBlock.h"
#include "projectdb/IProjectWork.h"
#include "projecttable/ArchiveGroups.h"
#include "projecttable/TableViews.h"
#include "projecttable/TrendTableModel.h"
#include "texts/MResources.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QStatusBar;
class QThread;
class QToolBar;
class TDBGrid;

/// All trends of the project in one grid: narrowed by column, ordered by several, edited in place.
/// Beside it the archives, of which some can be picked. What is looked at can be kept under a name.
///
/// The rows are read in a thread of their own with a connection of their own. When the file has
/// changed they are read anew as the user turns to the window; what stands in it stays meanwhile.
class frmProjectTable final : public QWidget {
    Q_OBJECT
public:
    /// `texts` and `work` are borrowed and outlive the window, which stands over `owner`.
    frmProjectTable(const MResources::TextTable& texts, projectdb::IProjectWork& work,
                    QWidget* owner);
    ~frmProjectTable() override;

    /// Shows the window, with what the file has now.
    void Open();
    /// The rows are being read.
    [[nodiscard]] bool IsReading() const { return reader_ != nullptr; }

    // Controls under their names.
    TDBGrid* tdbTable = nullptr;
    QComboBox* cmbView = nullptr;
    QLineEdit* txtFind = nullptr;
    QLabel* lblCount = nullptr;
    QLabel* lblCells = nullptr;
    QStatusBar* sb = nullptr;
    // Shown while not all trends could be read.
    QLabel* lblNotAll = nullptr;
    QPushButton* cmdReadAgain = nullptr;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Read;

    void BuildTop(class QVBoxLayout& layout);
    [[nodiscard]] QWidget* BuildNotAll();
    void BuildGrid();
    QAction* Add(const QString& name, const QString& text, const QKeySequence& keys,
                 const QString& icon, const std::function<void()>& run);
    static void SetKeys(QAction& action, const QKeySequence& keys);
    void ShowSharedKeys();
    void BuildActions();
    void SetUpColumns();
    [[nodiscard]] QString TextCaption(const QString& field) const;

    void ReadRows();
    void FirstRowsRead(TrendTable table);
    void RowsRead();
    void ShowNotAll(const QString& cause);
    void ReadAnewIfChanged();
    void Narrow();
    void ShowCounts();
    void ShowArchives();
    void PickArchives();

    void FillViews(const QString& current);
    void ApplyView(int index);
    [[nodiscard]] TableView CurrentView() const;
    void KeepView();
    void RemoveView();

    void ChooseFilter(int column, const QPoint& position);
    void Choose(GridRowId row, int column);
    void WriteToSelected(int column, const QVariant& value);
    void WriteBlock(const CellBlock::Result& block);
    void Copy();
    void Paste();
    void GoToEditor();
    /// The selected ones; when there are none, those that the filters leave.
    [[nodiscard]] std::vector<std::int32_t> ChosenTrends() const;
    void OpenContextMenu(const QPoint& position);
    void ShowError(const QString& text, const QString& details);
    void Hint(const QString& text);

    const MResources::TextTable& texts_;
    projectdb::IProjectWork& work_;
    TrendTableModel* trends_ = nullptr;
    ArchiveGroups* archives_ = nullptr;
    std::unique_ptr<TableViews> views_;
    QList<QAction*> shared_;  // that are commands of the editor
    QThread* reader_ = nullptr;
    std::shared_ptr<Read> read_;  // what the reader brings
    bool narrowing_ = false;      // fields follow a view just now
    bool columnsSetUp_ = false;
    bool isWhole_ = false;  // all trends have been read, at any time
};
