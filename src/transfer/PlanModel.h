#pragma once

#include <cstdint>
#include <memory>
#include <QAbstractItemModel>
#include <utility>
#include <vector>

#include "exchange/Plan.h"
#include "texts/MResources.h"

namespace transfer {

/// The plans of an import as a tree: the rows with a tick each, below them their fields with what
/// stands there and what is to stand there. Ticks are asked for by the signal; the plans that come
/// of it are given by Take.
class PlanModel final : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { kPlace, kState, kName, kWas, kIs, kColumnCount };

    /// `texts` is borrowed.
    PlanModel(const MResources::TextTable& texts, QObject* parent);

    /// `connection` is borrowed for the call.
    void Take(ado::Connection& connection, std::vector<exchange::Plan> plans);
    [[nodiscard]] const std::vector<exchange::Plan>& Plans() const noexcept { return plans_; }

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    /// Whether there are rows that can be wanted or left out.
    [[nodiscard]] bool HasTicks() const;
    /// Whether rows are wanted: all, none or some of those that can be.
    [[nodiscard]] Qt::CheckState AllTicked() const;
    /// Rows that are to be done.
    [[nodiscard]] std::size_t Count() const;

    /// What can be wanted or left out; `line` is 0 of a missing row.
    struct Row {
        exchange::SheetKind kind;
        std::size_t line;
        std::int32_t id;
    };
    /// Asks for rows by their places in the tree to be done, or left out.
    void Tick(const std::vector<int>& rows, bool isWanted);
    void TickAll(bool isWanted);
    /// Whether a row is to be done. REQUIRES: a row of the tree.
    [[nodiscard]] bool IsTicked(int row) const;

signals:
    /// The user wants rows to be done, or left out.
    void Ticked(const std::vector<transfer::PlanModel::Row>& rows, bool isWanted);

private:
    struct Place {
        std::size_t plan;
        std::size_t row;
        auto operator<=>(const Place&) const = default;
    };
    [[nodiscard]] const exchange::Plan& PlanOf(const Place& place) const {
        return plans_[place.plan];
    }
    [[nodiscard]] const exchange::PlannedRow& RowOf(const Place& place) const {
        return plans_[place.plan].rows[place.row];
    }
    [[nodiscard]] bool CanBeTicked(const Place& place) const;
    [[nodiscard]] bool IsDone(const Place& place) const;
    [[nodiscard]] QString RowText(const Place& place, int column) const;
    [[nodiscard]] QString FieldText(const Place& place, std::size_t field, int column) const;

    const MResources::TextTable& texts_;
    std::vector<exchange::Plan> plans_;
    std::vector<exchange::Sheet> sheets_;  // of each plan
    std::vector<Place> rows_;              // of all plans, in the order in which they are shown
};

}  // namespace transfer
