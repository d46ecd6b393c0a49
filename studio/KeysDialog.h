#pragma once

#include <optional>
#include <QDialog>
#include <QLineEdit>

#include "studio/KeyPlan.h"
#include "texts/MResources.h"

class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace studio {

class StudioTexts;

/// Takes the key that is pressed in it. Tab, Enter and Esc go on meaning what they mean in dialogs.
class KeyField final : public QLineEdit {
    Q_OBJECT
public:
    explicit KeyField(QWidget* parent = nullptr);

signals:
    void Pressed(QKeyCombination key);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

/// All commands of studio and editor with their keys, group by group; the user gives them others.
class KeysDialog final : public QDialog {
    Q_OBJECT
public:
    /// `studio`: the studio's own actions; the editor's are known.
    KeysDialog(const QList<KeyPlan::Entry>& studio, const commandset::OwnKeys& own,
               const StudioTexts& texts, QWidget* owner);

    [[nodiscard]] const commandset::OwnKeys& Own() const noexcept { return plan_.Own(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Build(const StudioTexts& texts);
    [[nodiscard]] QWidget* BuildFields();
    void FillTree();
    void ShowKeys();
    void Filter();
    void ShowState();
    void TakeKey(QKeyCombination key);
    void Give();
    void ResetChosen();
    [[nodiscard]] int Chosen() const;  // -1: none
    [[nodiscard]] QString TextOf(const QList<QKeyCombination>& keys) const;
    [[nodiscard]] QString NamesOf(const QList<int>& entries) const;
    [[nodiscard]] bool MayTake(const QString& keys, const QList<int>& owners);

    MResources::TextTable texts_;
    KeyPlan plan_;
    std::optional<QKeyCombination> pressed_;
    QList<QTreeWidgetItem*> items_;  // by entry
    QLineEdit* txtFilter_ = nullptr;
    QTreeWidget* tvwKeys_ = nullptr;
    QLabel* lblNoHit_ = nullptr;
    KeyField* txtKey_ = nullptr;
    QLabel* lblState_ = nullptr;
    QPushButton* cmdGive_ = nullptr;
    QPushButton* cmdNoKey_ = nullptr;
    QPushButton* cmdReset_ = nullptr;
    QPushButton* cmdResetAll_ = nullptr;
};

}  // namespace studio
