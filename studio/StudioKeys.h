#pragma once

#include <QList>
#include <QObject>

#include "studio/KeyPlan.h"

class QAction;
class QMenuBar;
class QSettings;

namespace studio {

class StudioTexts;

/// The keys of the studio's menus and of the editor's commands: what the user has given them, kept
/// among the studio's settings, and the window that shows them all.
class StudioKeys final : public QObject {
    Q_OBJECT
public:
    /// Property of an action whose key, a QKeySequence, is neither the user's to change nor always
    /// in force.
    static constexpr char kFixedKey[] = "fixedKey";

    /// `menus` is whole already, and its actions have their given keys. Both are borrowed;
    /// `state` null: nothing is kept.
    StudioKeys(QMenuBar& menus, QSettings* state, QObject* parent);

    /// Shows the overview; its OK stores and applies what the user has changed.
    void ShowOverview(const StudioTexts& texts, QWidget* owner);

signals:
    /// The menus' actions have other keys.
    void Changed();

private:
    [[nodiscard]] QList<KeyPlan::Entry> StudioEntries(const StudioTexts& texts) const;
    [[nodiscard]] bool IsGiven(const QString& name, QKeyCombination key) const;
    [[nodiscard]] commandset::OwnKeys Stored() const;
    void Store(const commandset::OwnKeys& own);
    void Apply(const commandset::OwnKeys& own);

    struct Item {
        QAction* action;
        QAction* menu;  // that it stands in
        QList<QKeyCombination> given;
        bool isFixed;
    };
    QList<Item> items_;
    QSettings* state_;
};

}  // namespace studio
