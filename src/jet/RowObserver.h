#pragma once

#include <cstddef>

namespace jet {

class Row;
class Table;

/// Hears of each row that changes of a database concern, of those that relationships take along
/// too, without the help of whoever changes them. What it reads it reads from the rows that it is
/// given: it changes nothing.
class RowObserver {
public:
    virtual ~RowObserver() = default;

    /// A row is about to be changed or deleted; null: one is about to be made. Gives the number
    /// under which Changed tells of it. A step that fails leaves numbers without a Changed.
    [[nodiscard]] virtual std::size_t Changing(Table& table, const Row* before) = 0;
    /// It has been; null: it is deleted.
    virtual void Changed(std::size_t number, Table& table, const Row* after) = 0;
    /// One insert, update or delete has ended with all that it took along. False: it has failed,
    /// and all is as it was before it.
    virtual void StepEnded(bool done) = 0;
    virtual void TransactionEnded(bool committed) = 0;
};

}  // namespace jet
