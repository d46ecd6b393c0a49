#pragma once

#include "jet/page/PageCache.h"
#include "jet/row/CodePage.h"

namespace jet {

class RowObserver;

/// What the parts of one open file share. Lives in Database.
struct FileContext {
    PageCache& cache;
    Format format;
    const CodePage* codePage;         // null for Jet 4
    RowObserver* observer = nullptr;  // of changes; null: nobody listens
};

}  // namespace jet
