#pragma once

#include <cstdint>
#include <optional>
#include <QString>
#include <string_view>

#include "ado/Value.h"
#include "dialogs/FArchiv.h"
#include "records/MArchiv.h"

/// The columns of an archive and the controls that show them.
namespace MArchiv {

/// The field that shows a column as a text or number; null for those that are shown otherwise.
[[nodiscard]] QLineEdit* TextFieldOf(const FArchiv& dialog, std::string_view column);

/// The entry of the list of file changes that stands for what is stored; see FileChange.
[[nodiscard]] int FileChangeOf(const QString& newFile, std::int32_t maxSamples);

[[nodiscard]] bool StandsOnRow(const ado::Recordset& rows);
[[nodiscard]] QString TextOf(const ado::Value& value);
[[nodiscard]] ado::Value ValueOf(const QString& text);

/// Fills the dialog column by column; throws ado::AdoError. See MArchiv::ArchiveToDialog.
void LoadArchive(const Rows& rows, FArchiv& dialog, const MResources::TextTable& texts,
                 QWidget* owner);

}  // namespace MArchiv
