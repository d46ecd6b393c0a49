#pragma once

#include <optional>
#include <QTableWidget>
#include <vector>

#include "exchange/InputRows.h"
#include "texts/MResources.h"

class QComboBox;

namespace transfer {

/// The first rows of a file below its headings, and above them a choice for each heading: which
/// column of the project it is, or none.
class ColumnChoices final : public QTableWidget {
    Q_OBJECT
public:
    /// `texts` is borrowed.
    explicit ColumnChoices(const MResources::TextTable& texts, QWidget* parent);

    /// Shows what comes in; nothing when `rows` is null. Nothing of it is kept.
    void Show(const exchange::InputRows* rows);
    /// Shows what each heading of the same rows is taken for now.
    void ShowChoices(const exchange::InputRows& rows);

    [[nodiscard]] QSize sizeHint() const override;

signals:
    /// The user takes a heading for a column of the project, or for none.
    void Assigned(std::size_t heading, std::optional<std::size_t> column);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QComboBox* NewChoice(const exchange::InputRows& rows, std::size_t heading);

    const MResources::TextTable& texts_;
};

}  // namespace transfer
