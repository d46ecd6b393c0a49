#pragma once

#include "jet/open/FileContext.h"
#include "jet/page/DataPage.h"

namespace jet {

/// Makes sure that a page, which has been read, is a data page of the table whose definition begins
/// on `table`.
[[nodiscard]] Result<DataPage> OpenOwned(const FileContext& file, Result<PageRef> ref,
                                         PageNo number, PageNo table);

/// True when a page that is none of the table's may have been one: it has been freed, and may
/// serve something else. Otherwise it is damaged.
[[nodiscard]] bool MayBeGone(const FileContext& file, PageNo number);

/// The bytes of the row that a moved slot points to; `page` becomes the page that holds them.
[[nodiscard]] Result<Bytes> FollowMove(const FileContext& file, PageNo table, const Slot& slot,
                                       DataPage& page);

}  // namespace jet
