// What the user has set of the studio.

#include <QSettings>

#include "studio/StudioWindow.h"
#include "studio/Theme.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kThemeKey = u"Settings/Theme"_s;
const QString kTextSizeKey = u"Settings/TextSize"_s;
const QString kReopenKey = u"Settings/ReopenLast"_s;

}  // namespace

Settings StudioWindow::StoredSettings() const {
    Settings settings;
    settings.language = texts_.Lcid();
    if (state_ == nullptr) return settings;
    settings.theme = ThemeOf(state_->value(kThemeKey).toString());
    const double size = state_->value(kTextSizeKey).toDouble();
    if (size >= SettingsDialog::kSmallestText && size <= SettingsDialog::kLargestText) {
        settings.textSize = size;
    }
    settings.reopen = state_->value(kReopenKey, true).toBool();
    return settings;
}

void StudioWindow::ApplySettings() {
    const Settings settings = StoredSettings();
    ApplyTheme(settings.theme, settings.textSize);
}

void StudioWindow::mnuSettingsOptions_Click() {
    SettingsDialog dialog(StoredSettings(), HasProject(), texts_, this);
    connect(&dialog, &SettingsDialog::BackupsRequested, this, &StudioWindow::mnuFileBackups_Click);
    if (dialog.exec() != QDialog::Accepted) return;
    const Settings chosen = dialog.Chosen();
    if (state_ != nullptr) {
        state_->setValue(kThemeKey,
                         kThemeNames.at(static_cast<std::size_t>(chosen.theme)).toString());
        state_->setValue(kTextSizeKey, chosen.textSize);
        state_->setValue(kReopenKey, chosen.reopen);
        state_->sync();
    }
    ApplyTheme(chosen.theme, chosen.textSize);
    ChangeLanguage(chosen.language);
}

}  // namespace studio
