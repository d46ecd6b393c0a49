#pragma once

#include "jet/LongValueReader.h"
#include "jet/row/LongValuePieces.h"

namespace jet {

struct LongValueReader::Rep {
    LongValuePieces pieces;
};

struct MemoReader::Rep {
    MemoPieces pieces;
};

}  // namespace jet
