#include "records/MArchiv.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "dialogs/FArchiv.h"
#include "project/Rows.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "records/archive/ArchiveFields.h"
#include "records/EditSession.h"
#include "records/MDialogs.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace MArchiv {
namespace {

using EditSession::TellNotLoaded;
using EditSession::TellNotStored;
using EditSession::Try;
using project::kParamNames;
using project::LanguageColumn;
namespace ArchiveType = project::ArchiveType;

ado::Value NullableValueOf(const std::optional<QString>& text) {
    return text ? ValueOf(*text) : ado::Value(ado::Null());
}

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
    const ado::Value value = NullableValueOf(kept);
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
    if (const QLineEdit* text = TextFieldOf(dialog, name)) {
        if (dialog.Touched(*text)) MDialogs::TextToField(archive, column, *text);
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
    return !Try("ArchiveToDialog", [&] { LoadArchive(rows, dialog, texts, owner); });
}

bool DialogToArchive(const Rows& rows, const FArchiv& dialog) {
    return !Try("DialogToArchive", [&] { Store(rows, dialog); });
}

bool EditArchive(const Rows& rows, const DialogServices& services, QWidget* owner,
                 const std::function<void()>& save) {
    FArchiv dialog(services, projectdb::kArchiveNames, owner);
    const auto unread =
        Try("ArchiveToDialog", [&] { LoadArchive(rows, dialog, services.texts, owner); });
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
