// What the user has set of the studio.

#include <algorithm>
#include <QSettings>
#include <QStatusBar>

#include "platform/Locale.h"
#include "studio/ProjectTabs.h"
#include "studio/StudioKeys.h"
#include "studio/StudioWindow.h"
#include "studio/Theme.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kStatusMs = 5000;
const QString kThemeKey = u"Settings/Theme"_s;
const QString kTextSizeKey = u"Settings/TextSize"_s;
const QString kNumbersKey = u"Settings/Numbers"_s;
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
    const QString numbers = state_->value(kNumbersKey).toString();
    const auto& known = SettingsDialog::kNumberLocales;
    if (std::find(known.begin(), known.end(), numbers) != known.end()) settings.numbers = numbers;
    settings.reopen = state_->value(kReopenKey, true).toBool();
    return settings;
}

void StudioWindow::ApplySettings() {
    const Settings settings = StoredSettings();
    ApplyTheme(settings.theme, settings.textSize);
    platform::SetNumberLocale(settings.numbers);
}

void StudioWindow::mnuSettingsOptions_Click() {
    SettingsDialog dialog(StoredSettings(), HasProject(), texts_, this);
    connect(&dialog, &SettingsDialog::BackupsRequested, this, &StudioWindow::mnuFileBackups_Click);
    connect(&dialog, &SettingsDialog::KeysRequested, this, &StudioWindow::mnuHelpKeys_Click);
    if (dialog.exec() != QDialog::Accepted) return;
    const Settings chosen = dialog.Chosen();
    if (state_ != nullptr) {
        state_->setValue(kThemeKey,
                         kThemeNames.at(static_cast<std::size_t>(chosen.theme)).toString());
        state_->setValue(kTextSizeKey, chosen.textSize);
        state_->setValue(kNumbersKey, chosen.numbers);
        state_->setValue(kReopenKey, chosen.reopen);
        state_->sync();
    }
    ApplyTheme(chosen.theme, chosen.textSize);
    const bool isOtherForm = platform::NumberLocaleName() != chosen.numbers;
    const bool isOtherLanguage = texts_.Lcid() != chosen.language;
    platform::SetNumberLocale(chosen.numbers);
    if (!ChangeLanguage(chosen.language) || isOtherLanguage || !isOtherForm) return;
    // The editors' tables have read their numbers already; a change of the language reads them too.
    WhileClosed(tabs_->Pages(), Content::Same, [] {});
    statusBar()->showMessage(texts_(Text::StatusNumbers), kStatusMs);
}

void StudioWindow::mnuHelpKeys_Click() {
    keys_->ShowOverview(texts_, this);
}

}  // namespace studio
