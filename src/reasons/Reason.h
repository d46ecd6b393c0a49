#pragma once

#include <cstdint>
#include <string>

/// What the libraries below the interface say about a failure besides their English description.
namespace reasons {

/// One for each thing that a user can do about a failure.
enum class Cause {
    Unknown,  // nothing can be said but what the description says
    FileMissing,
    FileExists,      // and is not overwritten
    FileUnreadable,  // the user may not read it
    FileReadOnly,    // the user may not write it, or its folder
    FileInUse,       // another program holds it; later it may work
    FileFull,        // the disk takes no more, or the file has reached its largest size
    NumbersUsedUp,   // a table has given the last of its numbers to a row
    DeviceFault,     // the operating system could not read or write
    FileDamaged,     // its content contradicts its format
    FileReplaced,    // another one has taken its place, or its tables have changed
    NotAProject,     // no database at all, or one cut short
    Unsupported,     // a database, or a form of one, that is not handled
    Password,        // a database that its maker has locked
    TableMissing,    // `name` is the table
    ColumnMissing,   // `name` is the column
    RowChanged,      // another program has changed or deleted the row meanwhile
    RowGone,         // there is no such row any more
    TextTooLong,     // `name` is the column, `limit` its characters
    NumberTooLarge,  // or too small; `name` is the column
    ValueTooLarge,   // a row, or a value of it, is larger than the file can hold
    WrongType,       // `name` is the column
    ValueDouble,     // another row has the value that may be there once
    ValueRequired,   // a value must not be missing
    RowsRelated,     // rows of another table belong to it
    PathUnusable,
    DiskFull,  // for a file that is written anew; nothing of it stays
    OutOfMemory,
};

struct Reason {
    Cause cause = Cause::Unknown;
    std::string file = {};   // UTF-8, as the user knows it; empty where none is concerned
    std::string name = {};   // what the cause says
    std::int64_t limit = 0;  // what the cause says
};

}  // namespace reasons
