#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ado/RowChange.h"
#include "jet/RowObserver.h"
#include "jet/Table.h"

namespace ado {

/// Collects the rows that a transaction changes.
class ChangeCollector final : public jet::RowObserver {
public:
    /// The rows of the transactions that have been committed since the last call.
    [[nodiscard]] std::vector<RowChange> TakeCommitted();

    // jet::RowObserver
    [[nodiscard]] std::size_t Changing(jet::Table& table, const jet::Row* before) override;
    void Changed(std::size_t number, jet::Table& table, const jet::Row* after) override;
    void StepEnded(bool done) override;
    void TransactionEnded(bool committed) override;

private:
    struct Entry {
        RowChange change;
        bool isDone = false;
    };
    using Columns = std::shared_ptr<const std::vector<std::string>>;

    [[nodiscard]] Columns ColumnsOf(const jet::Table& table);
    [[nodiscard]] static std::vector<Value> ValuesOf(const jet::Table& table, const jet::Row& row,
                                                     bool& isWhole);

    std::vector<Entry> entries_;              // of the transaction
    std::size_t stepBegin_ = 0;               // the first entry of the step that is going on
    std::map<std::string, Columns> columns_;  // by table, while the transaction goes on
    std::vector<RowChange> committed_;
};

}  // namespace ado
