#pragma once

#include <QDialog>

#include "studio/Theme.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;

namespace studio {

class StudioTexts;

/// What the user can set of the studio.
struct Settings {
    int language = 0;  // LCID
    Theme theme = Theme::System;
    double textSize = 0;  // points; 0: the desktop's
    bool reopen = true;   // the last project comes back at the start
};

class SettingsDialog final : public QDialog {
    Q_OBJECT
public:
    static constexpr double kSmallestText = 6;  // points
    static constexpr double kLargestText = 36;

    /// `hasProject`: one is open, whose backups can be looked at.
    SettingsDialog(const Settings& settings, bool hasProject, const StudioTexts& texts,
                   QWidget* parent);

    [[nodiscard]] Settings Chosen() const;

signals:
    /// The user turns to the backups, which have a dialog of their own.
    void BackupsRequested();

private:
    QComboBox* cmbLanguage_;
    QComboBox* cmbTheme_;
    QDoubleSpinBox* spnTextSize_;
    QCheckBox* chkReopen_;
};

}  // namespace studio
