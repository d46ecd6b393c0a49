#pragma once

#include <QString>

#include "exchange/CsvSheet.h"

/// What a user has chosen last for the exchange with spreadsheets; it belongs to him and not to a
/// project.
namespace transfer {

struct KeptForm {
    bool isWorkbook = true;
    exchange::CsvForm csv{};
    QString exportFolder{};
    QString importFolder{};
};

/// What spreadsheets on this station expect.
[[nodiscard]] exchange::CsvForm CsvFormOfStation();

[[nodiscard]] KeptForm LoadKeptForm();
/// Where it cannot be kept, the next window begins as this one has.
void Keep(const KeptForm& form);

}  // namespace transfer
