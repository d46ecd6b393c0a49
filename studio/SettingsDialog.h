#pragma once

#include <array>
#include <QDialog>
#include <QString>

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
    QString numbers;      // a locale of kNumberLocales; empty: the desktop's
    bool reopen = true;   // the last project comes back at the start
};

class SettingsDialog final : public QDialog {
    Q_OBJECT
public:
    static constexpr double kSmallestText = 6;  // points
    static constexpr double kLargestText = 36;

    /// How numbers can be written, in the order of the list.
    static constexpr std::array<QStringView, 3> kNumberLocales = {u"", u"de_DE", u"en_GB"};

    /// `hasProject`: one is open, whose backups can be looked at.
    SettingsDialog(const Settings& settings, bool hasProject, const StudioTexts& texts,
                   QWidget* parent);

    [[nodiscard]] Settings Chosen() const;

signals:
    /// The user turns to the backups, which have a dialog of their own.
    void BackupsRequested();
    /// The user turns to the keys, which have one too.
    void KeysRequested();

private:
    QComboBox* cmbLanguage_;
    QComboBox* cmbTheme_;
    QComboBox* cmbNumbers_;
    QDoubleSpinBox* spnTextSize_;
    QCheckBox* chkReopen_;
};

}  // namespace studio
