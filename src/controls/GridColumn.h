#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>

#include "controls/GridSource.h"

/// One entry of a value list: what is stored, and what is shown for it.
struct GridValueItem {
    int code = 0;
    QString text;

    friend bool operator==(const GridValueItem&, const GridValueItem&) = default;
};
using GridValueItems = QList<GridValueItem>;
Q_DECLARE_METATYPE(GridValueItem)

/// One column of a split: how its field is headed, shown and edited. Made by the split for each
/// column of its source and kept across resets as long as the source has a field of that name, so
/// that widths and captions set once stay.
///
/// The properties bear the names that the paths of the settings file use.
class GridColumn final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString DataField READ DataField CONSTANT)
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption NOTIFY Changed)
    Q_PROPERTY(double Width READ Width WRITE SetWidth NOTIFY WidthChanged)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible NOTIFY VisibleChanged)
    Q_PROPERTY(bool AllowSizing READ AllowSizing WRITE SetAllowSizing NOTIFY Changed)
    Q_PROPERTY(int Order READ Order WRITE SetOrder NOTIFY OrderChanged)
    Q_PROPERTY(bool Button READ Button WRITE SetButton NOTIFY Changed)
    Q_PROPERTY(bool Locked READ Locked WRITE SetLocked NOTIFY Changed)
    Q_PROPERTY(QString NumberFormat READ NumberFormat WRITE SetNumberFormat NOTIFY Changed)
    Q_PROPERTY(GridValueItems ValueItems READ ValueItems WRITE SetValueItems NOTIFY Changed)

public:
    GridColumn(QString dataField, GridKind kind, QObject* parent);

    [[nodiscard]] const QString& DataField() const noexcept { return dataField_; }
    [[nodiscard]] GridKind Kind() const noexcept { return kind_; }

    /// Empty: the source's own caption is shown.
    [[nodiscard]] const QString& Caption() const noexcept { return caption_; }
    void SetCaption(const QString& caption);

    /// Twips, 15 to the pixel at 96 dpi. Read back exactly as set until the user resizes the
    /// column. Values below 0 and beyond 32767 are brought into that range.
    [[nodiscard]] double Width() const noexcept { return width_; }
    void SetWidth(double twips);

    [[nodiscard]] bool Visible() const noexcept { return visible_; }
    void SetVisible(bool visible);

    /// Whether the user can change the width with the mouse.
    [[nodiscard]] bool AllowSizing() const noexcept { return allowSizing_; }
    void SetAllowSizing(bool allow);

    /// Position among all columns of the split, hidden ones included, from 0. Setting moves the
    /// column there and lets the others close up; positions set one after another for all columns
    /// give exactly that layout, whatever the sequence. Positions out of range are ignored.
    [[nodiscard]] int Order() const noexcept { return order_; }
    void SetOrder(int position);

    /// Shows a chooser button in the column's current cell; the split raises ButtonClick for it
    /// and for a space typed there.
    [[nodiscard]] bool Button() const noexcept { return button_; }
    void SetButton(bool button);

    /// Locked columns cannot be edited; what flags() says of a cell counts besides.
    [[nodiscard]] bool Locked() const noexcept { return locked_; }
    void SetLocked(bool locked);

    /// "General Number": as the locale writes it, without digit grouping and with as many places
    /// as the value has. Empty: the source's text. Nothing else is known. Texts of a column with a
    /// format are shown as they are; those that are numbers stand and sort as numbers.
    [[nodiscard]] const QString& NumberFormat() const noexcept { return numberFormat_; }
    void SetNumberFormat(const QString& format);

    /// When not empty, stored codes are shown as their texts, and the cell is edited with a
    /// drop-down that accepts these values only. A stored code outside the list is shown as its
    /// number and stays until an entry is chosen.
    [[nodiscard]] const GridValueItems& ValueItems() const noexcept { return valueItems_; }
    void SetValueItems(const GridValueItems& items);
    /// The text of a code; null when it is not listed.
    [[nodiscard]] QString ValueText(const QVariant& stored) const;

signals:
    void Changed();
    void WidthChanged();
    void VisibleChanged();
    void OrderChanged();
    /// A position has been asked for; the split answers with SetShownOrder.
    void OrderWanted(int position);

private:
    friend class ColumnLayout;
    /// What the user did, or where the column came to stand.
    void SetShownWidth(double twips);
    void SetShownOrder(int position);

    QString dataField_;
    GridKind kind_;
    QString caption_;
    double width_ = 1500;  // twips
    bool visible_ = true;
    bool allowSizing_ = true;
    int order_ = 0;
    bool placed_ = false;  // has been given its first position
    bool button_ = false;
    bool locked_ = false;
    QString numberFormat_;
    GridValueItems valueItems_;
};
