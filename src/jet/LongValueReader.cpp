#include "jet/LongValueReader.h"

#include "jet/open/LongValueReaderRep.h"

namespace jet {

LongValueReader::LongValueReader(std::unique_ptr<Rep> rep) : rep_(std::move(rep)) {}
LongValueReader::LongValueReader(LongValueReader&&) noexcept = default;
LongValueReader::~LongValueReader() = default;

Result<Bytes> LongValueReader::Next() {
    return rep_->pieces.Next();
}

MemoReader::MemoReader(std::unique_ptr<Rep> rep) : rep_(std::move(rep)) {}
MemoReader::MemoReader(MemoReader&&) noexcept = default;
MemoReader::~MemoReader() = default;

Result<std::u16string_view> MemoReader::Next() {
    return rep_->pieces.Next();
}

}  // namespace jet
