#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jet/open/FileContext.h"
#include "jet/open/RowRep.h"
#include "jet/page/UsageMap.h"
#include "jet/RowCursor.h"

namespace jet {

/// Borrows `file`.
struct RowCursor::Rep {
    Rep(const FileContext& context, std::string table, std::shared_ptr<const TableDef> definition);
    [[nodiscard]] Result<bool> Next();

    Row current;

private:
    /// The row at hand, to be changed: another one than before when somebody keeps that.
    [[nodiscard]] Row::Rep& OwnRow();
    [[nodiscard]] Result<bool> NextPage();
    Status ReadAhead();
    Status Reopen();
    [[nodiscard]] Result<Bytes> MovedBytes(int number, DataPage& page);

    const FileContext& file_;
    std::string tableName_;
    std::shared_ptr<const TableDef> def_;
    std::shared_ptr<Row::Rep> row_;  // that of `current`
    bool rowHasPage_ = false;        // it holds page_: a handle is not copied for each row
    UsageMap pages_;
    std::uint64_t generation_ = 0;  // of the page cache when pages_ was read; 0: not yet
    PageNo nextPage_{};
    std::vector<Result<DataPage>> ahead_;  // pages that have been read and not been used yet
    std::size_t nextAhead_ = 0;
    DataPage page_;
    int nextSlot_ = 0;
    bool atEnd_ = false;  // there are no pages behind those read ahead
};

}  // namespace jet
