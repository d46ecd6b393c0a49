#include "records/MArchiv.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "dialogs/ArchiveSummary.h"
#include "dialogs/FArchiv.h"
#include "languages/MResources.h"
#include "languages/MResourceTable.h"
#include "platform/MessageBox.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "records/EditSession.h"
#include "records/MDialogs.h"

namespace MArchiv {
namespace {

using EditSession::LanguageColumn;
using EditSession::LimitLength;
using EditSession::Succeeds;

// Bits of `Type`, as they are stored
constexpr int kKindMask = 7;  // the list index of cmbType
constexpr int kMainMemory = 8;
constexpr int kSaveSafe = 16;
constexpr int kRedundancy = 64;
constexpr int kEditedBits = kKindMask | kMainMemory | kSaveSafe | kRedundancy;

constexpr std::string_view kParamNames = "ParamNames";

struct TextColumn {
    std::string_view name;
    QLineEdit* Ui_FArchiv::*control;
};
constexpr std::array<TextColumn, 11> kTextColumns = {{
    {"Name", &Ui_FArchiv::txtName},
    {"Trigger", &Ui_FArchiv::txtTrigger},
    {"ScanTime", &Ui_FArchiv::txtScantime},
    {"XVar", &Ui_FArchiv::txtXVar},
    {"StartStop", &Ui_FArchiv::txtStartStop},
    {"Reset", &Ui_FArchiv::txtReset},
    {"CacheSize", &Ui_FArchiv::txtCacheSize},
    {"AuthorizationLevel", &Ui_FArchiv::txtAuthorizationLevel},
    {"Comment", &Ui_FArchiv::txtComment},
    {"MaxFiles", &Ui_FArchiv::txtMaxFiles},
    {"MaxSizeKb", &Ui_FArchiv::txtMaxSizekB},
}};

// What is read back for an event of the clock; the English form is written.
struct ClockEvent {
    QStringView placeholder;
    int entry;
};
constexpr std::array<ClockEvent, 13> kClockEvents = {{
    {u"$Year", 2},
    {u"$Jahr", 2},
    {u"$Month", 3},
    {u"$Monat", 3},
    {u"$Week", 4},
    {u"$Woche", 4},
    {u"$Day", 5},
    {u"$Tag", 5},
    {u"$Hour", 6},
    {u"$Stunde", 6},
    {u"$Minute", 7},
    {u"$Second", 8},
    {u"$Sekunde", 8},
}};

const TextColumn* FindTextColumn(std::string_view name) {
    const auto found = std::find_if(kTextColumns.begin(), kTextColumns.end(),
                                    [&](const TextColumn& column) { return column.name == name; });
    return found == kTextColumns.end() ? nullptr : &*found;
}

QString TextOf(const ado::Value& value) {
    return projectdb::ToQString(ado::ToText(value));
}

std::optional<QString> NullableTextOf(const ado::Value& value) {
    return ado::IsNull(value) ? std::nullopt : std::optional(TextOf(value));
}

ado::Value ValueOf(const QString& text) {
    return projectdb::ToUtf16(text);
}

ado::Value ValueOf(const std::optional<QString>& text) {
    return text ? ValueOf(*text) : ado::Value(ado::Null());
}

bool HasColumn(const ado::Recordset& rows, std::string_view name) {
    const std::vector<ado::Field>& fields = rows.Fields();
    return std::any_of(fields.begin(), fields.end(),
                       [&](const ado::Field& field) { return field.name == name; });
}

bool StandsOnRow(const ado::Recordset& rows) {
    return !rows.IsEOF() && !rows.IsBOF();
}

/// Loads one archive column by column.
class Loader {
public:
    Loader(const Rows& rows, FArchiv& dialog, const MResources::TextTable& texts, QWidget* owner)
        : rows_(rows), dialog_(dialog), texts_(texts), owner_(owner) {}

    void Load() {
        dialog_.SetDisplayTextAvailable(false);  // the archive may have no column for it
        for (std::size_t i = 0; i < rows_.archive.Fields().size(); ++i) LoadColumn(i);
        ChooseFileChange();
        if (dialog_.cmbType->currentIndex() == 0) {
            dialog_.txtMaxSamples->setText(QString::number(maxSamples_));
        }
        dialog_.SetOpenedName(dialog_.txtName->text());
    }

private:
    void LoadColumn(std::size_t column) {
        const ado::Field& field = rows_.archive.Fields().at(column);
        const std::string_view name = field.name;
        if (const TextColumn* text = FindTextColumn(name)) {
            QLineEdit& control = *(dialog_.*text->control);
            LimitLength(control, field);
            MDialogs::FieldToText(rows_.archive, column, control);
            return;
        }
        const ado::Value value = rows_.archive.Get(column);
        if (name == "FileName") {
            LimitLength(*dialog_.txtFileName, field);
            dialog_.txtFileName->setText(TextOf(value));
        } else if (name == "FilePath") {
            LimitLength(*dialog_.cboFilePath->lineEdit(), field);
            dialog_.cboFilePath->setEditText(TextOf(value));
        } else if (name == "RedundancyFilePath") {
            LimitLength(*dialog_.cboRedundancyFilePath->lineEdit(), field);
            dialog_.cboRedundancyFilePath->setEditText(TextOf(value));
        } else if (name == kParamNames) {
            dialog_.SetParamNames(NullableTextOf(value));
        } else if (name == "SampleMode") {
            MDialogs::SelectComboByItemData(*dialog_.cmbSampleMode, value);
        } else if (name == "MaxSamples") {
            maxSamples_ = ado::ToLong(value);
        } else if (name == "NewFile") {
            LimitLength(*dialog_.txtNewFile, field);
            newFile_ = TextOf(value);
        } else if (name == "Type") {
            LoadType(ado::ToLong(value));
        } else if (name == "TextID") {
            LoadDisplayText(value);
        }
    }

    void LoadType(int type) {
        const int kind = type & kKindMask;
        dialog_.cmbType->setCurrentIndex(kind < dialog_.cmbType->count() ? kind : -1);
        dialog_.optHDRAM.at((type & kMainMemory) != 0 ? 1 : 0)->setChecked(true);
        dialog_.optSaveFast.at((type & kSaveSafe) != 0 ? 1 : 0)->setChecked(true);
        dialog_.chkRedundancy->setChecked((type & kRedundancy) != 0);
    }

    void LoadDisplayText(const ado::Value& textId) {
        dialog_.txtTextID->clear();
        ado::Recordset& texts = rows_.indexTexts;
        const std::string column = LanguageColumn(rows_.language);
        bool available = false;
        if (!ado::IsNull(textId)) {
            if (!texts.IsBOF() || !texts.IsEOF()) texts.MoveFirst();
            if (!texts.IsEOF()) texts.Find("ID = " + std::to_string(ado::ToLong(textId)));
            if (texts.IsEOF()) {
                platform::ShowMessage(texts_.GetText(MResourceTable::kTextIndexTextMissing),
                                      platform::MessageButtons::Ok, dialog_.windowTitle(), owner_);
            } else {
                texts.Resync();
                available = HasColumn(texts, column);
                if (HasColumn(texts, kParamNames)) {
                    dialog_.SetIndexTextParamNames(NullableTextOf(texts.Get(kParamNames)));
                }
            }
        }
        if (available) {
            const std::size_t index = texts.FieldIndex(column);
            LimitLength(*dialog_.txtTextID, texts.Fields().at(index));
            MDialogs::FieldToText(texts, index, *dialog_.txtTextID);
        }
        dialog_.SetDisplayTextAvailable(available);
    }

    /// Choosing an entry makes the dialog set what is stored for it.
    void ChooseFileChange() {
        const auto event =
            std::find_if(kClockEvents.begin(), kClockEvents.end(),
                         [this](const ClockEvent& known) { return known.placeholder == newFile_; });
        if (event != kClockEvents.end()) {
            dialog_.cboNewFile->setCurrentIndex(event->entry);
        } else if (!newFile_.isEmpty()) {
            dialog_.cboNewFile->setCurrentIndex(FileChange::kTrigger);
            dialog_.txtNewFile->setText(newFile_);
        } else if (maxSamples_ != 0) {
            dialog_.cboNewFile->setCurrentIndex(FileChange::kCount);
            dialog_.txtMaxSamples->setText(QString::number(maxSamples_));
        } else {
            dialog_.cboNewFile->setCurrentIndex(FileChange::kNever);
        }
    }

    const Rows& rows_;
    FArchiv& dialog_;
    const MResources::TextTable& texts_;
    QWidget* owner_;
    QString newFile_;
    std::int32_t maxSamples_ = 0;
};

void StoreType(ado::Recordset& archive, std::size_t column, const FArchiv& dialog) {
    if (dialog.cmbType->currentIndex() < 0) return;
    int type = dialog.cmbType->currentData().toInt();
    if (dialog.optHDRAM[1]->isChecked()) type |= kMainMemory;
    if (dialog.optSaveFast[1]->isChecked()) type |= kSaveSafe;
    if (dialog.chkRedundancy->isChecked()) type |= kRedundancy;
    // On purpose not masked: bits that the dialog does not edit survive only an unchanged type.
    if ((ado::ToLong(archive.Get(column)) & kEditedBits) != type) archive.Set(column, type);
}

/// The recordset may stand anywhere when the archive has no text; a row that belongs to something
/// else must not get the archive's.
void StoreDisplayText(ado::Recordset& texts, const ado::Value& textId, platform::Lcid language,
                      const FArchiv& dialog) {
    if (ado::IsNull(textId) || !StandsOnRow(texts)) return;
    if (ado::ToLong(texts.Get("ID")) != ado::ToLong(textId)) return;
    const std::string column = LanguageColumn(language);
    if (HasColumn(texts, column)) texts.Set(column, ValueOf(dialog.txtTextID->text()));
    if (HasColumn(texts, kParamNames)) {
        texts.Set(kParamNames, ValueOf(dialog.IndexTextParamNames()));
    }
}

void StoreColumn(const Rows& rows, std::size_t column, const FArchiv& dialog) {
    ado::Recordset& archive = rows.archive;
    const std::string_view name = archive.Fields().at(column).name;
    if (const TextColumn* text = FindTextColumn(name)) {
        MDialogs::TextToField(archive, column, *(dialog.*text->control));
    } else if (name == "FileName") {
        archive.Set(column, ValueOf(dialog.txtFileName->text()));
    } else if (name == "FilePath") {
        archive.Set(column, ValueOf(dialog.cboFilePath->currentText()));
    } else if (name == "RedundancyFilePath") {
        archive.Set(column, ValueOf(dialog.cboRedundancyFilePath->currentText()));
    } else if (name == kParamNames) {
        archive.Set(column, ValueOf(dialog.ParamNames()));
    } else if (name == "SampleMode") {
        MDialogs::ComboToField(archive, column, *dialog.cmbSampleMode);
    } else if (name == "MaxSamples") {
        archive.Set(column, platform::LeadingNumber(dialog.lblMaxSamples->text()));
    } else if (name == "NewFile") {
        archive.Set(column, ValueOf(dialog.lblNewFile->text()));
    } else if (name == "Type") {
        StoreType(archive, column, dialog);
    } else if (name == "TextID") {
        StoreDisplayText(rows.indexTexts, archive.Get(column), rows.language, dialog);
    }
}

/// Drops what has been assigned, so that neither row keeps half of the values.
void TakeBack(const Rows& rows) {
    std::ignore = Succeeds("CancelUpdate", [&] { rows.archive.CancelUpdate(); });
    std::ignore = Succeeds("Resync", [&] {
        if (StandsOnRow(rows.indexTexts)) rows.indexTexts.Resync();
    });
}

}  // namespace

bool ArchiveToDialog(const Rows& rows, FArchiv& dialog, const MResources::TextTable& texts,
                     QWidget* owner) {
    return Succeeds("ArchiveToDialog", [&] { Loader(rows, dialog, texts, owner).Load(); });
}

bool DialogToArchive(const Rows& rows, const FArchiv& dialog) {
    return Succeeds("DialogToArchive", [&] {
        for (std::size_t i = 0; i < rows.archive.Fields().size(); ++i) {
            StoreColumn(rows, i, dialog);
        }
    });
}

bool EditArchive(const Rows& rows, const DialogServices& services, QWidget* owner) {
    FArchiv dialog(services, projectdb::kArchiveNames, owner);
    const auto tell = [&](int text) {
        platform::ShowMessage(services.texts.GetText(text), platform::MessageButtons::Ok,
                              dialog.windowTitle(), owner);
    };
    if (!ArchiveToDialog(rows, dialog, services.texts, owner)) {
        tell(MResourceTable::kTextArchiveInitFailed);
        return false;
    }
    dialog.exec();
    if (dialog.Cancelled()) return false;
    const bool written = DialogToArchive(rows, dialog) && Succeeds("EditArchive", [&] {
                             if (rows.indexTexts.EditMode() != ado::EditMode::None)
                                 rows.indexTexts.Update();
                         });
    if (!written) {
        tell(MResourceTable::kTextArchiveWriteBackFailed);
        TakeBack(rows);
        dialog.TakeBackName();
    }
    return written;
}

}  // namespace MArchiv
