#pragma once

#include <array>
#include <QString>
#include <string_view>

#include "dialogs/PropertyDialog.h"
#include "ui_FTrend.h"

/// Modal property dialog of one trend. Its controls have their given names; members of control
/// arrays are those below. The two pages of the appearance show a sample curve as the settings
/// make it; the pictures are never stored.
class FTrend final : public PropertyDialog, public Ui::FTrend {
    Q_OBJECT

public:
    /// `services` is borrowed and outlives the dialog; `nameGroup` is a literal.
    FTrend(const DialogServices& services, QStringView nameGroup, QWidget* owner = nullptr);

    /// A trend without a text column in the current language has no display text to edit.
    void SetDisplayTextAvailable(bool available);
    /// The dialog stands for several trends; names and texts are taken as patterns.
    void ShowCount(std::size_t trends);
    /// The colours that the curves of several trends have, each once; shown until one is chosen for
    /// all.
    void SetCurveColours(QList<int> colours);
    /// As PropertyDialog's; call it when the controls have been filled.
    void SetOpenedName(const QString& name);

    /// The control that shows a column, found by its name: a QLineEdit txtFactor, a QComboBox
    /// cmbFilter or a KVColorSelect clrVLineColor, with the label lblFactor beside it. Null when
    /// the dialog shows no such column.
    [[nodiscard]] QWidget* FieldOf(std::string_view column) const;

    // TrendVar, Maximum, Minimum, SurrogateMax, SurrogateMin, ErrorValue, Hysteresis
    std::array<QPushButton*, 7> cmdChoose{};

public slots:
    void cmbHysteresisMode_Click();
    void cmbFilter_Click();

protected:
    [[nodiscard]] int HelpTopic(int page) const override;

private slots:
    void txtName_Change();
    void ShowCurve();

private:
    void CollectArrays();
    void SetCaptions();
    void SetColorTexts();
    void FillLists();
    void RestrictInputs();
    void ConnectControls();
    void ConnectPickers();

    QList<int> curveColours_;  // of several trends that differ
    QString keptName_;         // the name before the latest change; txtName_Change compares with it
};
