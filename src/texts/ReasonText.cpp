#include "texts/ReasonText.h"

#include "texts/Fill.h"
#include "texts/Language.h"
#include "texts/MResourceTable.h"

namespace texts {
namespace {

using MResourceTable::Reason;
using reasons::Cause;

/// A cause without a sentence does not compile.
Reason SentenceOf(Cause cause) {
    switch (cause) {
        case Cause::Unknown:
            return Reason::Unknown;
        case Cause::FileMissing:
            return Reason::FileMissing;
        case Cause::FileExists:
            return Reason::FileExists;
        case Cause::FileUnreadable:
            return Reason::FileUnreadable;
        case Cause::FileReadOnly:
            return Reason::FileReadOnly;
        case Cause::FileInUse:
            return Reason::FileInUse;
        case Cause::FileFull:
            return Reason::FileFull;
        case Cause::NumbersUsedUp:
            return Reason::NumbersUsedUp;
        case Cause::DeviceFault:
            return Reason::DeviceFault;
        case Cause::FileDamaged:
            return Reason::FileDamaged;
        case Cause::FileReplaced:
            return Reason::FileReplaced;
        case Cause::NotAProject:
            return Reason::NotAProject;
        case Cause::Unsupported:
            return Reason::Unsupported;
        case Cause::Password:
            return Reason::Password;
        case Cause::TableMissing:
            return Reason::TableMissing;
        case Cause::ColumnMissing:
            return Reason::ColumnMissing;
        case Cause::RowChanged:
            return Reason::RowChanged;
        case Cause::RowGone:
            return Reason::RowGone;
        case Cause::TextTooLong:
            return Reason::TextTooLong;
        case Cause::NumberTooLarge:
            return Reason::NumberTooLarge;
        case Cause::ValueTooLarge:
            return Reason::ValueTooLarge;
        case Cause::WrongType:
            return Reason::WrongType;
        case Cause::ValueDouble:
            return Reason::ValueDouble;
        case Cause::ValueRequired:
            return Reason::ValueRequired;
        case Cause::RowsRelated:
            return Reason::RowsRelated;
        case Cause::PathUnusable:
            return Reason::PathUnusable;
        case Cause::OutOfMemory:
            return Reason::OutOfMemory;
        case Cause::DiskFull:
            return Reason::DiskFull;
    }
    return Reason::Unknown;
}

}  // namespace

QString ReasonText(const reasons::Reason& reason) {
    const QString limit = reason.limit == 0 ? QString() : QString::number(reason.limit);
    return Fill(InterfaceText(static_cast<int>(SentenceOf(reason.cause))),
                {{u"file", QString::fromStdString(reason.file)},
                 {u"name", QString::fromStdString(reason.name)},
                 {u"limit", limit}});
}

}  // namespace texts
