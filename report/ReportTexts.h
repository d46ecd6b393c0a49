#pragma once

#include <QLocale>
#include <QString>

#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace platform {
class Registry;
}

namespace report {

using Text = MResourceTable::Report;

/// The report's own texts in the station's interface language, and how that language writes
/// numbers.
class ReportTexts {
public:
    /// Reads the interface language. Where the registry cannot be read it is German.
    explicit ReportTexts(platform::Registry& registry);

    /// The text with values for its placeholders.
    [[nodiscard]] QString operator()(Text text, texts::Values values = {}) const {
        return table_.GetText(text, values);
    }
    /// For a viewer of help, which has texts of its own.
    [[nodiscard]] const MResources::TextTable& Table() const noexcept { return table_; }
    [[nodiscard]] const QLocale& Locale() const noexcept { return locale_; }
    [[nodiscard]] QString Number(qint64 number) const { return locale_.toString(number); }

private:
    MResources::TextTable table_;
    QLocale locale_;
};

}  // namespace report
