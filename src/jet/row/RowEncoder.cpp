#include "jet/row/RowEncoder.h"

#include <algorithm>
#include <limits>

#include "jet/page/Bytes.h"

namespace jet {
namespace {

using ByteVector = std::vector<std::byte>;

constexpr std::size_t kShortestCompressed = 3;    // characters
constexpr std::size_t kLongestCompressed = 1024;  // characters; longer memos are stored plain

bool IsNarrow(char16_t c) {
    return c >= 1 && c <= 0xFF;
}

/// Such a text, stored plain, would be taken for a compressed one.
bool IsMarked(std::u16string_view text) {
    return !text.empty() && text.front() == u'\uFEFF';
}

void AppendPlain(std::u16string_view text, ByteVector& bytes) {
    const Bytes plain = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), plain.begin(), plain.end());
}

void AppendNarrow(std::u16string_view text, ByteVector& bytes) {
    for (const char16_t c : text) bytes.push_back(static_cast<std::byte>(c));
}

/// The compressed form, which leads to two-byte units and for a narrow rest back again.
Result<ByteVector> EncodeMarked(const Column& column, std::u16string_view text) {
    ByteVector bytes = {std::byte{0xFF}, std::byte{0xFE}, std::byte{0}};
    AppendPlain(text.substr(0, 1), bytes);
    text.remove_prefix(1);
    if (!text.empty() && std::all_of(text.begin(), text.end(), IsNarrow)) {
        bytes.push_back(std::byte{0});
        AppendNarrow(text, bytes);
        return bytes;
    }
    // A unit that begins with a byte 0 would lead back in its middle.
    if (std::any_of(text.begin(), text.end(), [](char16_t c) { return (c & 0xFF) == 0; })) {
        return Status::BadArgument(
            "column \"" + column.name +
            "\": a text that begins with U+FEFF cannot hold U+0000, U+0100, U+0200 and so on");
    }
    AppendPlain(text, bytes);
    return bytes;
}

template <typename T>
ByteVector BytesOf(T value) {
    ByteVector bytes(sizeof value);
    Store(MutableBytes(bytes), 0, value);
    return bytes;
}

Status Mismatch(const Column& column) {
    return Status::BadArgument("column \"" + column.name + "\": a value of another type");
}

Status TooLong(const Column& column, std::size_t size, std::size_t most, const char* unit) {
    return {StatusCode::TooLong, "column \"" + column.name + "\": " + std::to_string(size) + " " +
                                     unit + ", " + std::to_string(most) + " fit"};
}

template <typename T>
Result<ByteVector> EncodeInteger(const Column& column, std::int32_t value) {
    using Limits = std::numeric_limits<T>;
    if (value < std::int32_t{Limits::min()} || value > std::int64_t{Limits::max()}) {
        return Status(StatusCode::TooLong, "column \"" + column.name +
                                               "\": " + std::to_string(value) + " is out of range");
    }
    return BytesOf(static_cast<T>(value));
}

Result<ByteVector> EncodeTextValue(const Column& column, std::u16string_view text) {
    const std::size_t most = column.length / 2;
    if (text.size() > most) return TooLong(column, text.size(), most, "characters");
    ByteVector bytes;
    if (column.IsFixed()) {
        if (IsMarked(text)) {
            return Status::BadArgument("column \"" + column.name +
                                       "\": a column of fixed length takes no text that begins "
                                       "with U+FEFF");
        }
        std::u16string padded(text);
        padded.resize(most, u' ');
        AppendPlain(padded, bytes);
        return bytes;
    }
    JET_ASSIGN(bytes, EncodeText(column, text));
    if (bytes.size() > column.length) {
        return TooLong(column, bytes.size(), column.length, "bytes with U+FEFF in front");
    }
    return bytes;
}

Result<ByteVector> EncodeBinary(const Column& column, const Binary& value) {
    if (value.size() > column.length) return TooLong(column, value.size(), column.length, "bytes");
    ByteVector bytes(value);
    if (column.IsFixed()) bytes.resize(column.length);
    return bytes;
}

ByteVector EncodeGuid(const Guid& guid) {
    constexpr std::array<std::size_t, 16> kOrder = {3, 2, 1,  0,  5,  4,  7,  6,
                                                    8, 9, 10, 11, 12, 13, 14, 15};
    ByteVector bytes(kOrder.size());
    for (std::size_t i = 0; i < kOrder.size(); ++i) bytes[kOrder[i]] = guid.bytes[i];
    return bytes;
}

Result<ByteVector> EncodeDecimal(const Column& column, const Decimal& value) {
    if (value.scale != column.scale) return Mismatch(column);
    ByteVector bytes(17);
    bytes[0] = value.negative ? std::byte{0x80} : std::byte{0};
    for (std::size_t word = 0; word < 4; ++word) {
        for (std::size_t i = 0; i < 4; ++i) {
            bytes[1 + 4 * word + (3 - i)] = value.magnitude[4 * word + i];
        }
    }
    return bytes;
}

}  // namespace

Result<ByteVector> EncodeText(const Column& column, std::u16string_view text) {
    if (IsMarked(text)) return EncodeMarked(column, text);
    const bool compress = column.MayCompress() && text.size() >= kShortestCompressed &&
                          text.size() <= kLongestCompressed &&
                          std::all_of(text.begin(), text.end(), IsNarrow);
    ByteVector bytes;
    if (compress) {
        bytes.reserve(2 + text.size());
        bytes = {std::byte{0xFF}, std::byte{0xFE}};
        AppendNarrow(text, bytes);
    } else {
        AppendPlain(text, bytes);
    }
    return bytes;
}

Result<ByteVector> EncodeValue(const Column& column, const Value& value) {
    const auto* number = std::get_if<std::int32_t>(&value);
    switch (column.type) {
        case ColumnType::Byte:
            return number != nullptr ? EncodeInteger<std::uint8_t>(column, *number)
                                     : Mismatch(column);
        case ColumnType::Integer:
            return number != nullptr ? EncodeInteger<std::int16_t>(column, *number)
                                     : Mismatch(column);
        case ColumnType::Long:
            if (number != nullptr) return BytesOf(*number);
            break;
        case ColumnType::Currency:
            if (const auto* v = std::get_if<Currency>(&value)) return BytesOf(v->tenThousandths);
            break;
        case ColumnType::Single:
            if (const auto* v = std::get_if<float>(&value)) return BytesOf(*v);
            break;
        case ColumnType::Double:
            if (const auto* v = std::get_if<double>(&value)) return BytesOf(*v);
            break;
        case ColumnType::DateTime:
            if (const auto* v = std::get_if<Date>(&value)) return BytesOf(v->days);
            break;
        case ColumnType::Text:
            if (const auto* v = std::get_if<std::u16string>(&value)) {
                return EncodeTextValue(column, *v);
            }
            break;
        case ColumnType::Binary:
        case ColumnType::LongBinary:
            if (const auto* v = std::get_if<Binary>(&value)) return EncodeBinary(column, *v);
            break;
        case ColumnType::Guid:
            if (const auto* v = std::get_if<Guid>(&value)) return EncodeGuid(*v);
            break;
        case ColumnType::Numeric:
            if (const auto* v = std::get_if<Decimal>(&value)) return EncodeDecimal(column, *v);
            break;
        default:
            break;
    }
    return Mismatch(column);
}

Result<RowImage> RowImage::Of(const TableDef& def, const RowView& row) {
    RowImage image(def);
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        if (!row.HasBit(def.columns[i])) continue;
        jet::Bytes bytes;
        if (def.columns[i].type != ColumnType::Boolean) {
            JET_ASSIGN(bytes, row.ValueBytes(def.columns[i]));
        }
        image.values_[i] = ByteVector(bytes.begin(), bytes.end());
    }
    return image;
}

Result<ByteVector> RowImage::Assemble() const {
    const TableDef& def = *def_;
    ByteVector row(2);
    StoreU16(row, 0, def.highestColumnCount);
    ByteVector mask((def.highestColumnCount + 7) / 8);
    std::vector<const ByteVector*> variable(def.variableColumnCount);
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        const Column& column = def.columns[i];
        if (values_[i]) mask[column.number / 8] |= static_cast<std::byte>(1U << column.number % 8);
        if (column.type == ColumnType::Boolean) continue;
        if (!column.IsFixed()) {
            if (column.variableIndex >= variable.size()) {
                return Status::Corrupt("column \"" + column.name + "\" has an impossible place");
            }
            if (values_[i]) variable[column.variableIndex] = &*values_[i];
            continue;
        }
        const std::size_t end = 2 + std::size_t{column.fixedOffset} + column.length;
        if (end > kMostBytes) return Status::Corrupt("the fixed columns do not fit a row");
        if (row.size() < end) row.resize(end);
        if (values_[i])
            std::copy_n(values_[i]->begin(),
                        std::min<std::size_t>(values_[i]->size(), column.length),
                        row.begin() + 2 + column.fixedOffset);
    }
    if (!variable.empty()) {
        std::vector<std::size_t> starts;
        for (const ByteVector* value : variable) {
            starts.push_back(row.size());
            if (value != nullptr) row.insert(row.end(), value->begin(), value->end());
        }
        starts.push_back(row.size());
        const auto append = [&](std::size_t number) {
            row.push_back(static_cast<std::byte>(number));
            row.push_back(static_cast<std::byte>(number >> 8));
        };
        for (auto start = starts.rbegin(); start != starts.rend(); ++start) append(*start);
        append(variable.size());
    }
    // A row that moves leaves a pointer of four bytes. Only rows of Booleans are shorter, and what
    // is added must lie in front of the mask.
    if (variable.empty() && row.size() + mask.size() < 4) row.resize(4 - mask.size());
    row.insert(row.end(), mask.begin(), mask.end());
    if (row.size() > kMostBytes) {
        return Status(StatusCode::TooLong, "the row has " + std::to_string(row.size()) +
                                               " bytes, " + std::to_string(kMostBytes) + " fit");
    }
    return row;
}

}  // namespace jet
