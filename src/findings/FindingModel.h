#pragma once

#include <array>
#include <QAbstractTableModel>
#include <QSortFilterProxyModel>

#include "findings/FindingService.h"
#include "project/FindingText.h"
#include "texts/MResources.h"

namespace findings {

/// The findings that are open, a row each. What is told of them is made when it is shown.
class FindingModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { kSeverity, kMessage, kArchive, kRow, kField, kColumnCount };

    /// `texts` is borrowed.
    explicit FindingModel(const MResources::TextTable& texts, QObject* parent = nullptr);

    /// Null: none.
    void Show(CheckedPtr checked);
    /// REQUIRES: a row of the model.
    [[nodiscard]] const project::Finding& At(int row) const;
    /// The row of the same rule, place and values; -1 when there is none.
    [[nodiscard]] int RowOf(const project::Finding& finding) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    [[nodiscard]] QString TextAt(const project::Finding& finding, int column) const;

    const MResources::TextTable& texts_;
    project::FindingWords words_;
    CheckedPtr checked_;
};

/// The findings of some severities that contain a text in any column.
class FindingFilter final : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit FindingFilter(FindingModel& model, QObject* parent = nullptr);

    void SetText(const QString& text);
    void SetShown(project::Severity severity, bool isShown);

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex& parent) const override;
    [[nodiscard]] bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    FindingModel& model_;
    QString text_;
    std::array<bool, 4> isShown_{true, true, true, true};  // by severity
};

}  // namespace findings
