#include "records/MArchiv.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "dialogs/ArchiveSummary.h"
#include "dialogs/FArchiv.h"
#include "messages/MessageBox.h"
#include "project/Rows.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "records/EditSession.h"
#include "records/MDialogs.h"
#include "texts/Language.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace MArchiv {
namespace {

using EditSession::BindToField;
using EditSession::TellNotLoaded;
using EditSession::TellNotStored;
using EditSession::Try;
using project::kParamNames;
using project::LanguageColumn;
namespace ArchiveType = project::ArchiveType;

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
            BindToField(dialog_, control, field);
            MDialogs::FieldToText(rows_.archive, column, control);
            return;
        }
        const ado::Value value = rows_.archive.Get(column);
        if (name == "FileName") {
            BindToField(dialog_, *dialog_.txtFileName, field);
            dialog_.txtFileName->setText(TextOf(value));
        } else if (name == "FilePath") {
            BindToField(dialog_, *dialog_.cboFilePath->lineEdit(), field);
            dialog_.cboFilePath->setEditText(TextOf(value));
        } else if (name == "RedundancyFilePath") {
            BindToField(dialog_, *dialog_.cboRedundancyFilePath->lineEdit(), field);
            dialog_.cboRedundancyFilePath->setEditText(TextOf(value));
        } else if (name == kParamNames) {
            dialog_.SetParamNames(NullableTextOf(value));
        } else if (name == "SampleMode") {
            dialog_.ShowCode(*dialog_.cmbSampleMode, projectdb::NumberOf(rows_.archive, name),
                             project::FindArchiveColumn(name)->codes);
        } else if (name == "MaxSamples") {
            BindToField(dialog_, *dialog_.txtMaxSamples, field);
            maxSamples_ = ado::ToLong(value);
        } else if (name == "NewFile") {
            BindToField(dialog_, *dialog_.txtNewFile, field);
            newFile_ = TextOf(value);
        } else if (name == "Type") {
            LoadType(ado::ToLong(value));
        } else if (name == "TextID") {
            LoadDisplayText(value);
        }
    }

    void LoadType(int type) {
        dialog_.ShowCode(*dialog_.cmbType, type & ArchiveType::kKindMask);
        dialog_.optHDRAM.at((type & ArchiveType::kMainMemory) != 0 ? 1 : 0)->setChecked(true);
        dialog_.optSaveFast.at((type & ArchiveType::kSaveSafe) != 0 ? 1 : 0)->setChecked(true);
        dialog_.chkRedundancy->setChecked((type & ArchiveType::kRedundancy) != 0);
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
                messages::ShowMessage(texts_.GetText(MResourceTable::kTextIndexTextMissing),
                                      messages::MessageButtons::Ok, dialog_.windowTitle(), owner_);
            } else {
                texts.Resync();
                available = project::HasField(texts, column);
                if (project::HasField(texts, kParamNames)) {
                    dialog_.SetIndexTextParamNames(NullableTextOf(texts.Get(kParamNames)));
                }
            }
        }
        if (available) {
            const std::size_t index = texts.FieldIndex(column);
            BindToField(dialog_, *dialog_.txtTextID, texts.Fields().at(index));
            MDialogs::FieldToText(texts, index, *dialog_.txtTextID);
            dialog_.SetOtherTexts(
                platform::LanguageName(rows_.language, texts::InterfaceLanguage()),
                MDialogs::OtherTexts(texts, rows_.language));
        }
        dialog_.SetDisplayTextAvailable(available);
    }

    /// Choosing an entry makes the dialog set what is stored for it.
    void ChooseFileChange() {
        if (const auto event = project::FindClockEvent(projectdb::ToUtf16(newFile_))) {
            dialog_.cboNewFile->setCurrentIndex(FileChange::kYear + static_cast<int>(*event));
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
    const std::int32_t stored = ado::ToLong(archive.Get(column));
    const bool kindShown = dialog.cmbType->currentIndex() >= 0;
    int type = kindShown ? dialog.cmbType->currentData().toInt() : stored & ArchiveType::kKindMask;
    if (dialog.optHDRAM[1]->isChecked()) type |= ArchiveType::kMainMemory;
    if (dialog.optSaveFast[1]->isChecked()) type |= ArchiveType::kSaveSafe;
    if (dialog.chkRedundancy->isChecked()) type |= ArchiveType::kRedundancy;
    // On purpose not masked: bits that the dialog does not edit survive only an unchanged type.
    if ((stored & ArchiveType::kKnown) != type) archive.Set(column, type);
}

void AssignIfOther(ado::Recordset& row, std::string_view column,
                   const std::optional<QString>& kept) {
    const ado::Value value = ValueOf(kept);
    if (row.Get(column) != value) row.Set(column, value);
}

/// The recordset may stand anywhere when the archive has no text; a row that belongs to something
/// else must not get the archive's.
void StoreDisplayText(ado::Recordset& texts, const ado::Value& textId, platform::Lcid language,
                      const FArchiv& dialog) {
    if (ado::IsNull(textId) || !StandsOnRow(texts)) return;
    if (ado::ToLong(texts.Get("ID")) != ado::ToLong(textId)) return;
    const std::string column = LanguageColumn(language);
    if (dialog.Touched(*dialog.txtTextID) && project::HasField(texts, column)) {
        texts.Set(column, ValueOf(dialog.txtTextID->text()));
    }
    MDialogs::AssignTexts(texts, dialog.OtherTexts());
    if (project::HasField(texts, kParamNames)) {
        AssignIfOther(texts, kParamNames, dialog.IndexTextParamNames());
    }
}

/// The English form of an event of the clock takes the place of the German one.
void StoreNewFile(ado::Recordset& archive, std::size_t column, const FArchiv& dialog) {
    const QString stored = TextOf(archive.Get(column));
    const QString now = dialog.lblNewFile->text();
    const bool isEvent = project::FindClockEvent(projectdb::ToUtf16(stored)).has_value();
    if (dialog.Touched(*dialog.lblNewFile) || (isEvent && now != stored)) {
        archive.Set(column, ValueOf(now));
    }
}

/// What the user has left alone is not written, so that it stays as it is.
void StoreColumn(const Rows& rows, std::size_t column, const FArchiv& dialog) {
    ado::Recordset& archive = rows.archive;
    const std::string_view name = archive.Fields().at(column).name;
    const auto assign = [&](const QWidget& control, const QString& text) {
        if (dialog.Touched(control)) archive.Set(column, ValueOf(text));
    };
    if (const TextColumn* known = FindTextColumn(name)) {
        const QLineEdit& text = *(dialog.*known->control);
        if (dialog.Touched(text)) MDialogs::TextToField(archive, column, text);
    } else if (name == "FileName") {
        assign(*dialog.txtFileName, dialog.txtFileName->text());
    } else if (name == "FilePath") {
        assign(*dialog.cboFilePath, dialog.cboFilePath->currentText());
    } else if (name == "RedundancyFilePath") {
        assign(*dialog.cboRedundancyFilePath, dialog.cboRedundancyFilePath->currentText());
    } else if (name == kParamNames) {
        AssignIfOther(archive, name, dialog.ParamNames());
    } else if (name == "SampleMode") {
        if (dialog.Touched(*dialog.cmbSampleMode)) {
            MDialogs::ComboToField(archive, column, *dialog.cmbSampleMode);
        }
    } else if (name == "MaxSamples") {
        if (dialog.Touched(*dialog.lblMaxSamples)) {
            MDialogs::TextToField(archive, column, dialog.lblMaxSamples->text());
        }
    } else if (name == "NewFile") {
        StoreNewFile(archive, column, dialog);
    } else if (name == "Type") {
        StoreType(archive, column, dialog);
    } else if (name == "TextID") {
        StoreDisplayText(rows.indexTexts, archive.Get(column), rows.language, dialog);
    }
}

void Store(const Rows& rows, const FArchiv& dialog) {
    for (std::size_t i = 0; i < rows.archive.Fields().size(); ++i) StoreColumn(rows, i, dialog);
}

/// Drops what has been assigned, so that neither row keeps half of the values, and reads both as
/// they are now. False when one of them cannot be read again.
bool TakeBack(const Rows& rows) {
    const auto readAgain = [](const char* procedure, ado::Recordset& row) {
        return !Try(procedure, [&] {
            row.CancelUpdate();
            if (StandsOnRow(row)) row.Resync();
        });
    };
    const bool archive = readAgain("CancelUpdate", rows.archive);
    return readAgain("Resync", rows.indexTexts) && archive;
}

}  // namespace

bool ArchiveToDialog(const Rows& rows, FArchiv& dialog, const MResources::TextTable& texts,
                     QWidget* owner) {
    return !Try("ArchiveToDialog", [&] { Loader(rows, dialog, texts, owner).Load(); });
}

bool DialogToArchive(const Rows& rows, const FArchiv& dialog) {
    return !Try("DialogToArchive", [&] { Store(rows, dialog); });
}

bool EditArchive(const Rows& rows, const DialogServices& services, QWidget* owner,
                 const std::function<void()>& save) {
    FArchiv dialog(services, projectdb::kArchiveNames, owner);
    const auto unread =
        Try("ArchiveToDialog", [&] { Loader(rows, dialog, services.texts, owner).Load(); });
    if (unread) {
        TellNotLoaded(dialog, services.texts, MResourceTable::kTextArchiveInitFailed, *unread,
                      owner);
        return false;
    }
    EditSession::Storing storing(
        EditSession::ShownRows({&rows.archive, &rows.indexTexts}),
        {[&] { Store(rows, dialog); }, save, [&] { return TakeBack(rows); },
         [&](const projectdb::Failure& failure, bool gone) {
             TellNotStored(dialog, services.texts, MResourceTable::kTextArchiveWriteBackFailed,
                           failure, gone);
         }},
        services);
    dialog.SetStore([&] { return storing.Run("DialogToArchive", &dialog); });
    dialog.exec();
    return !dialog.Cancelled();
}

}  // namespace MArchiv
