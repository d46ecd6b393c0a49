#pragma once

#include <functional>
#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>

#include "addin/AddInTest.h"
#include "projectdb/ADOArchiv.h"
#include "projectdb/ProjectRows.h"

/// The editor window as its user has it in front: the plugin in a host's window that is active,
/// driven by keys and mouse. Its classes belong to the plugin, so they are reached by name.
class EditorTest : public AddInTest {
protected:
    ~EditorTest() override;

    /// Opens the brewery with an archive shown, in English or German. The keyboard is in the
    /// trend split. Numbers are written as the interface's language does.
    void Open(const QString& archive = QStringLiteral("ARCH1"), bool english = true);
    /// Shows the window and gives it the keyboard, when the plugin has been opened otherwise.
    void TurnTo(int split = 1);
    /// The user turns to another window; what that brings has happened on return.
    void TurnAway();
    /// As the studio goes down: the settings are written.
    void CloseProject() { addIn_->CKV4Extensibility_Terminate(); }

    [[nodiscard]] QObject* Grid();
    /// A split's object by its path in the settings file, a column of it.
    [[nodiscard]] QObject* SplitObject(int split);
    [[nodiscard]] QObject* Column(int split, const QString& field);
    [[nodiscard]] int ColumnNumber(int split, const QString& field);
    [[nodiscard]] QStringList ShownFields(int split);
    [[nodiscard]] QString Text(int row, const QString& field, int split = 1);
    [[nodiscard]] QStringList Names(int split = 1);
    [[nodiscard]] QString CurrentName(int split = 1);
    [[nodiscard]] int CurrentRow(int split = 1) { return Split(split)->currentIndex().row(); }

    /// Makes the cell the current one with the mouse; its column is shown before.
    void ClickCell(int row, const QString& field, int split = 1,
                   Qt::KeyboardModifiers held = Qt::NoModifier);
    void SelectRow(int row, Qt::KeyboardModifiers held = Qt::NoModifier, int split = 1);
    [[nodiscard]] QList<int> SelectedRows(int split = 1);
    /// Where keys go now.
    [[nodiscard]] QWidget* Keyboard();
    void Key(Qt::Key key, Qt::KeyboardModifiers held = Qt::NoModifier);
    void Type(const QString& text);
    [[nodiscard]] QWidget* CellEditor();
    /// What stands in it.
    [[nodiscard]] QString TypedText();
    [[nodiscard]] QAction* Action(const QString& name);

    /// Rejects the dialog that `body` opens, after a look at it; returns its name.
    QString DialogOf(const std::function<void()>& body,
                     const std::function<void(QDialog&)>& look = {});

    /// The dialog that `act` opens is answered by `look`, which closes it.
    void AnswerDialog(const std::function<void()>& act, const std::function<void(QDialog&)>& look);

    /// Another program's view of the project file.
    void Elsewhere(const std::function<void(projectdb::ProjectRows&)>& change);
    /// A field of the trend with this name in the first archive, as text; "(Null)", "(no row)".
    [[nodiscard]] QString Stored(const QString& trend, const std::string& field);
    [[nodiscard]] QStringList MessageTexts() const;

    QString project_;  // native path
};
