#include "studio/SettingsDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include "messages/LabelEdges.h"
#include "studio/StudioTexts.h"
#include "texts/Language.h"

namespace studio {

using namespace Qt::Literals::StringLiterals;

namespace {

QString NumberExample(const QString& name) {
    const QLocale locale = name.isEmpty() ? QLocale::system() : QLocale(name);
    return locale.toString(1234.5, 'f', 1) + u"  "_s +
           locale.toString(QDate(2026, 12, 31), QLocale::ShortFormat);
}

}  // namespace

SettingsDialog::SettingsDialog(const Settings& settings, bool hasProject, const StudioTexts& texts,
                               QWidget* parent)
    : QDialog(parent) {
    setObjectName(u"frmSettings"_s);
    setWindowTitle(texts(Text::SettingsTitle));
    cmbLanguage_ = new QComboBox;
    cmbLanguage_->setObjectName(u"cmbLanguage"_s);
    for (const texts::Language* known : texts::Languages()) {
        // Its name bears the letter of its menu item.
        cmbLanguage_->addItem(QString(known->name).remove(u'&'), static_cast<int>(known->lcid));
    }
    cmbLanguage_->setCurrentIndex(cmbLanguage_->findData(settings.language));
    cmbTheme_ = new QComboBox;
    cmbTheme_->setObjectName(u"cmbTheme"_s);
    for (const Text name :
         {Text::ThemeSystem, Text::ThemeLight, Text::ThemeDark, Text::ThemeContrast}) {
        cmbTheme_->addItem(texts(name));
    }
    cmbTheme_->setCurrentIndex(static_cast<int>(settings.theme));
    spnTextSize_ = new QDoubleSpinBox;
    spnTextSize_->setObjectName(u"spnTextSize"_s);
    spnTextSize_->setDecimals(1);
    spnTextSize_->setSuffix(u" pt"_s);
    // One step below the smallest size is the desktop's.
    spnTextSize_->setRange(kSmallestText - 1, kLargestText);
    spnTextSize_->setSpecialValueText(texts(Text::TextSizeSystem));
    spnTextSize_->setValue(settings.textSize > 0 ? settings.textSize : 0);
    cmbNumbers_ = new QComboBox;
    cmbNumbers_->setObjectName(u"cmbNumbers"_s);
    constexpr Text kNumberTexts[] = {Text::NumbersSystem, Text::NumbersGerman,
                                     Text::NumbersEnglish};
    for (std::size_t i = 0; i < kNumberLocales.size(); ++i) {
        cmbNumbers_->addItem(
            texts(kNumberTexts[i], {{u"example", NumberExample(kNumberLocales[i].toString())}}));
        if (settings.numbers == kNumberLocales[i])
            cmbNumbers_->setCurrentIndex(static_cast<int>(i));
    }
    chkReopen_ = new QCheckBox(texts(Text::SettingsReopen));
    chkReopen_->setObjectName(u"chkReopen"_s);
    chkReopen_->setChecked(settings.reopen);
    auto* cmdKeys = new QPushButton(texts(Text::SettingsKeys));
    cmdKeys->setObjectName(u"cmdKeys"_s);
    cmdKeys->setAutoDefault(false);
    connect(cmdKeys, &QPushButton::clicked, this, &SettingsDialog::KeysRequested);
    auto* cmdBackups = new QPushButton(texts(Text::SettingsBackups));
    cmdBackups->setObjectName(u"cmdBackups"_s);
    cmdBackups->setAutoDefault(false);
    cmdBackups->setEnabled(hasProject);
    connect(cmdBackups, &QPushButton::clicked, this, &SettingsDialog::BackupsRequested);

    auto* form = new QFormLayout;
    form->addRow(texts(Text::SettingsLanguageLabel), cmbLanguage_);
    form->addRow(texts(Text::SettingsTheme), cmbTheme_);
    form->addRow(texts(Text::SettingsTextSize), spnTextSize_);
    form->addRow(texts(Text::SettingsNumbers), cmbNumbers_);
    form->addRow(chkReopen_);
    form->addRow(cmdKeys);
    form->addRow(cmdBackups);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(texts(Text::Ok), QDialogButtonBox::AcceptRole)->setObjectName(u"cmdOk"_s);
    buttons->addButton(texts(Text::Cancel), QDialogButtonBox::RejectRole)
        ->setObjectName(u"cmdCancel"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addStretch();
    layout->addWidget(buttons);
    messages::AlignLabels(*this);
}

Settings SettingsDialog::Chosen() const {
    Settings chosen;
    chosen.language = cmbLanguage_->currentData().toInt();
    chosen.theme = static_cast<Theme>(cmbTheme_->currentIndex());
    const double size = spnTextSize_->value();
    chosen.textSize = size < kSmallestText ? 0 : size;
    chosen.numbers =
        kNumberLocales.at(static_cast<std::size_t>(cmbNumbers_->currentIndex())).toString();
    chosen.reopen = chkReopen_->isChecked();
    return chosen;
}

}  // namespace studio
