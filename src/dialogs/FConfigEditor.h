#pragma once

#include <functional>
#include <QDialog>
#include <QFont>
#include <QList>
#include <QString>

#include "ui_FConfigEditor.h"

namespace MResources {
class TextTable;
}

/// Modal dialog of the user's options: font, check boxes, and which columns of the trend table are
/// shown in which order. MConfigeditor fills it and takes it over; the dialog itself knows neither
/// grid nor settings. Made for one use and shown once. For the user-interface thread.
///
/// Keys in the lists: Enter moves the selected column to the other list, as a double click does;
/// Del hides it, Ctrl+Up and Ctrl+Down move it within the chosen ones, which can also be dragged.
class FConfigEditor final : public QDialog, public Ui::FConfigEditor {
    Q_OBJECT

public:
    /// A column that can be chosen. Both lists hold the caption as text and the position as item
    /// data.
    struct Column {
        int number;  // by which it is asked for again
        QString caption;
        int position;  // among the columns shown
    };
    using ShowHelp = std::function<void(int topic, QWidget* owner)>;

    /// `texts` is borrowed. `showHelp` lets no exception out; when empty, F1 does nothing.
    FConfigEditor(const MResources::TextTable& texts, ShowHelp showHelp, QWidget* owner = nullptr);

    /// True until OK.
    [[nodiscard]] bool Cancelled() const noexcept { return cancelled_; }

    [[nodiscard]] const QFont& EditorFont() const noexcept { return editorFont_; }
    void SetEditorFont(const QFont& font);

    /// Appends a column that is hidden.
    void AddHidden(const Column& column);
    /// Adds a column that is shown behind those that stand at the same position or before it.
    void AddShown(const Column& column);
    /// Selects the first entry of each list; call it when both are filled.
    void SelectFirst();
    /// Numbers of the columns, from top to bottom.
    [[nodiscard]] QList<int> HiddenColumns() const;
    [[nodiscard]] QList<int> ShownColumns() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private slots:
    void cmdOk_Click();
    void cmdHelp_Click();
    void cmdEditorFont_Click();
    void btnAdd_Click();
    void btnDel_Click();
    void btnUp_Click();
    void btnDn_Click();
    void UpdateButtons();

private:
    void SetCaptions();
    void SetUpToolBar();
    void SetUpLists();
    void ConnectControls();
    void ShowNextPage(int step);
    void MoveChosen(int step);
    [[nodiscard]] QString Text(int id) const;

    const MResources::TextTable& texts_;
    ShowHelp showHelp_;
    // Apart from the field that shows it: a widget mixes its font with that of the dialog.
    QFont editorFont_;
    bool cancelled_ = true;
};
