#include "records/archive/ArchiveFields.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "dialogs/ArchiveSummary.h"
#include "messages/MessageBox.h"
#include "project/Rows.h"
#include "projectdb/ProjectRows.h"
#include "projectdb/Text.h"
#include "records/EditSession.h"
#include "records/MDialogs.h"
#include "texts/Language.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace MArchiv {
namespace {

using EditSession::BindToField;
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

std::optional<QString> NullableTextOf(const ado::Value& value) {
    return ado::IsNull(value) ? std::nullopt : std::optional(TextOf(value));
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
        if (QLineEdit* text = TextFieldOf(dialog_, name)) {
            BindToField(dialog_, *text, field);
            MDialogs::FieldToText(rows_.archive, column, *text);
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
        const int entry = FileChangeOf(newFile_, maxSamples_);
        dialog_.cboNewFile->setCurrentIndex(entry);
        if (entry == FileChange::kTrigger) dialog_.txtNewFile->setText(newFile_);
        if (entry == FileChange::kCount) {
            dialog_.txtMaxSamples->setText(QString::number(maxSamples_));
        }
    }

    const Rows& rows_;
    FArchiv& dialog_;
    const MResources::TextTable& texts_;
    QWidget* owner_;
    QString newFile_;
    std::int32_t maxSamples_ = 0;
};

}  // namespace

QLineEdit* TextFieldOf(const FArchiv& dialog, std::string_view column) {
    const auto found = std::find_if(kTextColumns.begin(), kTextColumns.end(),
                                    [&](const TextColumn& each) { return each.name == column; });
    return found == kTextColumns.end() ? nullptr : dialog.*found->control;
}

int FileChangeOf(const QString& newFile, std::int32_t maxSamples) {
    if (const auto event = project::FindClockEvent(projectdb::ToUtf16(newFile))) {
        return FileChange::kYear + static_cast<int>(*event);
    }
    if (!newFile.isEmpty()) return FileChange::kTrigger;
    return maxSamples != 0 ? FileChange::kCount : FileChange::kNever;
}

bool StandsOnRow(const ado::Recordset& rows) {
    return !rows.IsEOF() && !rows.IsBOF();
}

QString TextOf(const ado::Value& value) {
    return projectdb::ToQString(ado::ToText(value));
}

ado::Value ValueOf(const QString& text) {
    return projectdb::ToUtf16(text);
}

void LoadArchive(const Rows& rows, FArchiv& dialog, const MResources::TextTable& texts,
                 QWidget* owner) {
    Loader(rows, dialog, texts, owner).Load();
}

}  // namespace MArchiv
