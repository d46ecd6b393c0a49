#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariant>

namespace MResources {
class TextTable;
}
class QPushButton;
class QToolButton;
class QWidget;

/// What makes the dialog of one record that of several. A field in which they differ says so and
/// is empty; each field is untouched, changed or cleared, shows which, and can go back. The button
/// of OK says what it will do. Belongs to the dialog.
class ManyRecords final : public QObject {
    Q_OBJECT
public:
    /// All are borrowed. `records`: how many there are.
    ManyRecords(const MResources::TextTable& texts, QPushButton& ok, int records, QObject* dialog);

    /// The control holds what they all have, unless they differ. Called for each, when it has been
    /// filled.
    void Add(QWidget& control, bool differs);
    [[nodiscard]] bool IsTouched(const QWidget& control) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Connect(QWidget& control);
    void AddWayBack(QWidget& control);
    static void Place(QToolButton& back);
    void GoBack(QWidget& control);
    void Changed(QWidget& control);
    void ShowDifferent(QWidget& control);
    [[nodiscard]] QString Text(int id) const;

    const MResources::TextTable& texts_;
    QPushButton& ok_;
    const QString okText_;
    const int records_;
    QHash<const QWidget*, QVariant> contents_;  // as they were filled
    QSet<const QWidget*> edited_;               // fields that have been typed into
};
