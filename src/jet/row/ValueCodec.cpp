#include "jet/row/ValueCodec.h"

#include "jet/page/Bytes.h"
#include "jet/row/TextDecoder.h"

namespace jet {
namespace {

constexpr std::uint32_t kLengthMask = 0x3FFFFFFF;
constexpr std::uint32_t kInlineFlag = 0x80000000;
constexpr std::uint32_t kSingleRowFlag = 0x40000000;
constexpr std::size_t kDescriptorSize = 12;

/// Stored as u32, u16, u16 in little-endian order and eight bytes as they are.
Guid DecodeGuid(Bytes bytes) {
    constexpr std::array<std::size_t, 16> kOrder = {3, 2, 1,  0,  5,  4,  7,  6,
                                                    8, 9, 10, 11, 12, 13, 14, 15};
    Guid guid;
    for (std::size_t i = 0; i < kOrder.size(); ++i) guid.bytes[i] = bytes[kOrder[i]];
    return guid;
}

/// Sign byte, then the magnitude as four u32, the most significant first.
Decimal DecodeDecimal(const Column& column, Bytes bytes) {
    Decimal decimal;
    decimal.negative = (LoadU8(bytes, 0) & 0x80) != 0;
    decimal.scale = column.scale;
    for (std::size_t word = 0; word < 4; ++word) {
        for (std::size_t i = 0; i < 4; ++i) {
            decimal.magnitude[4 * word + i] = bytes[1 + 4 * word + (3 - i)];
        }
    }
    return decimal;
}

Status DecodeLongValue(const Column& column, Bytes bytes, LongValue& value) {
    if (bytes.size() < kDescriptorSize) {
        return Status::Corrupt("a memo or OLE value has " + std::to_string(bytes.size()) +
                               " bytes, too few for its head");
    }
    value.isText = column.type == ColumnType::Memo;
    const std::uint32_t head = LoadU32(bytes, 0);
    value.length = head & kLengthMask;
    value.first = RowId::FromPointer(LoadU32(bytes, 4));
    value.stamp = LoadU32(bytes, 8);
    value.inlineBytes.clear();
    if ((head & kInlineFlag) != 0) {
        value.kind = LongValue::Kind::Inline;
        const Bytes data = bytes.subspan(kDescriptorSize);
        if (data.size() < value.length) return Status::Corrupt("a memo or OLE value is cut short");
        value.inlineBytes.assign(data.begin(), data.begin() + value.length);
    } else {
        value.kind =
            (head & kSingleRowFlag) != 0 ? LongValue::Kind::SingleRow : LongValue::Kind::Chain;
    }
    return {};
}

/// The T that `value` holds, made if it holds something else.
template <typename T>
T& Reuse(Value& value) {
    T* held = std::get_if<T>(&value);
    return held != nullptr ? *held : value.emplace<T>();
}

/// Bytes that a value of the type takes; 0 = any number.
std::size_t ExactSize(ColumnType type) {
    switch (type) {
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Single:
            return 4;
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::DateTime:
            return 8;
        case ColumnType::Guid:
            return 16;
        case ColumnType::Numeric:
            return 17;
        default:
            return 0;
    }
}

}  // namespace

Status DecodeValue(const Column& column, const CodePage* codePage, Bytes bytes, Value& value) {
    if (bytes.size() < ExactSize(column.type)) {
        return Status::Corrupt("its value has " + std::to_string(bytes.size()) +
                               " bytes, too few for its type");
    }
    switch (column.type) {
        case ColumnType::Byte:
            value = std::int32_t{LoadU8(bytes, 0)};
            return {};
        case ColumnType::Integer:
            value = std::int32_t{Load<std::int16_t>(bytes, 0)};
            return {};
        case ColumnType::Long:
            value = Load<std::int32_t>(bytes, 0);
            return {};
        case ColumnType::Currency:
            value = Currency{Load<std::int64_t>(bytes, 0)};
            return {};
        case ColumnType::Single:
            value = Load<float>(bytes, 0);
            return {};
        case ColumnType::Double:
            value = Load<double>(bytes, 0);
            return {};
        case ColumnType::DateTime:
            value = Date{Load<double>(bytes, 0)};
            return {};
        case ColumnType::Text:
            DecodeText(codePage, bytes, Reuse<std::u16string>(value));
            return {};
        case ColumnType::Guid:
            value = DecodeGuid(bytes);
            return {};
        case ColumnType::Numeric:
            value = DecodeDecimal(column, bytes);
            return {};
        case ColumnType::Memo:
        case ColumnType::Ole:
            return DecodeLongValue(column, bytes, Reuse<LongValue>(value));
        default:
            Reuse<Binary>(value).assign(bytes.begin(), bytes.end());
            return {};
    }
}

}  // namespace jet
