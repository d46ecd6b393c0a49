#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>
#include <vector>

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
    /// What the button says: numbers of the texts for one field and for several.
    struct Captions {
        int field;
        int fields;
    };

    /// All are borrowed. `records`: how many there are.
    ManyRecords(const MResources::TextTable& texts, QPushButton& ok, const Captions& captions,
                int records, QObject* dialog);

    /// The control holds what they all have, unless they differ. Called for each, when it has been
    /// filled.
    void Add(QWidget& control, bool differs) { Add(QList<QWidget*>{&control}, differs); }
    /// Several controls that are one field: the buttons of a choice. Where the records differ none
    /// is chosen.
    void Add(const QList<QWidget*>& controls, bool differs);
    /// Whether the field that the control belongs to is to be written.
    [[nodiscard]] bool IsTouched(const QWidget& control) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Field {
        QList<QWidget*> controls;  // the last one bears the mark
        QVariantList contents;     // as they were filled
        bool isEdited = false;     // has been typed into
    };

    void Connect(QWidget& control, std::size_t field);
    QToolButton& AddWayBack(std::size_t field);
    [[nodiscard]] static QToolButton* WayBackOf(const QWidget& control);
    static void Place(QToolButton& back);
    [[nodiscard]] static QVariantList ContentsOf(const Field& field);
    [[nodiscard]] static bool IsTouched(const Field& field);
    void GoBack(std::size_t field);
    void Changed(std::size_t field);
    void ShowDifferent(QWidget& control);
    void ShowCount();
    [[nodiscard]] QString Text(int id) const;

    const MResources::TextTable& texts_;
    QPushButton& ok_;
    const QString okText_;
    const Captions captions_;
    const int records_;
    std::vector<Field> fields_;
    QHash<const QObject*, std::size_t> fieldOf_;  // by control
};
