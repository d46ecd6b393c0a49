#pragma once

#include <array>
#include <optional>
#include <QString>

#include "dialogs/PropertyDialog.h"
#include "ui_FArchiv.h"

/// Modal property dialog of one archive. Its controls have their given names; members of control
/// arrays are those below. Two labels are never shown: lblNewFile and lblMaxSamples hold what is
/// stored as `NewFile` and `MaxSamples`.
///
/// Settings that do not apply are visible but unusable, and keep their values.
class FArchiv final : public PropertyDialog, public Ui::FArchiv {
    Q_OBJECT

public:
    /// `services` is borrowed and outlives the dialog; `nameGroup` is a literal.
    FArchiv(const DialogServices& services, QStringView nameGroup, QWidget* owner = nullptr);

    /// `ParamNames` of the archive, carried through; nothing: Null.
    [[nodiscard]] const std::optional<QString>& ParamNames() const noexcept { return paramNames_; }
    void SetParamNames(std::optional<QString> names);

    /// An archive without an index text in the current language has none to edit.
    void SetDisplayTextAvailable(bool available);
    /// The dialog stands for several archives; names and texts are taken as patterns. A setting is
    /// usable where it applies to all of them. Call it when the controls have been filled.
    void ShowCount(std::size_t archives);

    std::array<QRadioButton*, 2> optHDRAM{};      // 0 hard disk, 1 main memory
    std::array<QRadioButton*, 2> optSaveFast{};   // 0 fast, 1 safe
    std::array<QPushButton*, 4> cmdChoose{};      // Trigger, NewFile, StartStop, Reset
    std::array<QPushButton*, 2> cmdChoosePath{};  // FilePath, RedundancyFilePath

public slots:
    /// Which settings apply to the type, the storage and the file change.
    void UpdateArchiveEnabling();
    /// Which settings apply to the sample mode, and what the scan time counts.
    void UpdateSampleModeFields();

protected:
    [[nodiscard]] int HelpTopic(int page) const override;
    [[nodiscard]] std::optional<Objection> WhatIsMissing() const override;

private slots:
    void cmbType_Click();
    void cboNewFile_Click();
    void txtName_Change();
    void txtMaxSamples_Change();
    void txtNewFile_Change();
    void ShowSummary();

private:
    void CollectArrays();
    void SetCaptions();
    void FillLists();
    void ConnectControls();
    void ConnectPickers();
    void ChooseFileChange();
    [[nodiscard]] bool IsContinuationFile() const;

    QString keptName_;  // the name before the latest change; txtName_Change compares with it
    std::optional<QString> paramNames_;
};
