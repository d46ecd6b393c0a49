#include "jet/index/KeyEncoder.h"

#include <bit>

#include "jet/page/Bytes.h"
#include "jet/TextKey.h"

namespace jet {
namespace {

constexpr std::size_t kBlock = 8;         // bytes of binary data in front of each length byte
constexpr unsigned char kMoreBlocks = 9;  // length byte of a block that is followed by another

template <typename T>
void AppendBigEndian(T bits, std::string& out) {
    for (int shift = static_cast<int>(sizeof(T)) * 8 - 8; shift >= 0; shift -= 8) {
        out += static_cast<char>(bits >> shift & 0xFF);
    }
}

template <typename Signed>
void AppendInteger(Signed value, std::string& out) {
    using Unsigned = std::make_unsigned_t<Signed>;
    constexpr Unsigned kTop = Unsigned{1} << (sizeof(Signed) * 8 - 1);
    AppendBigEndian(static_cast<Unsigned>(static_cast<Unsigned>(value) ^ kTop), out);
}

template <typename Bits, typename Real>
void AppendReal(Real value, std::string& out) {
    const Bits bits = std::bit_cast<Bits>(value);
    constexpr Bits kTop = Bits{1} << (sizeof(Bits) * 8 - 1);
    AppendBigEndian(static_cast<Bits>((bits & kTop) == 0 ? bits ^ kTop : ~bits), out);
}

void Complement(std::string& key, std::size_t begin) {
    for (std::size_t i = begin; i < key.size(); ++i) key[i] = static_cast<char>(~key[i]);
}

/// Blocks of eight bytes, each with a length byte. In a descending key everything is complemented
/// but the length bytes of the blocks that are followed by another.
void AppendBlocks(Bytes data, bool ascending, std::string& key) {
    while (!data.empty()) {
        const std::size_t size = std::min(data.size(), kBlock);
        const bool last = size == data.size();
        const std::size_t begin = key.size();
        key.append(reinterpret_cast<const char*>(data.data()), size);
        key.append(kBlock - size, '\0');
        if (last) key += static_cast<char>(size);
        if (!ascending) Complement(key, begin);
        if (!last) key += static_cast<char>(kMoreBlocks);
        data = data.subspan(size);
    }
}

/// The sign byte is the same in both directions, as it always was in this format.
void AppendDecimal(const Decimal& value, bool ascending, std::string& key) {
    key += value.negative ? '\0' : '\xFF';
    const std::size_t begin = key.size();
    key.append(reinterpret_cast<const char*>(value.magnitude.data()), value.magnitude.size());
    if (value.negative == ascending) Complement(key, begin);
}

struct Encoder {
    const Column& column;
    bool ascending;
    std::string& key;

    Status operator()(const Null&) const { return {}; }
    Status operator()(bool value) const {
        if (column.type != ColumnType::Boolean) return Mismatch();
        key += value ? '\0' : '\xFF';
        return Direction(1);
    }
    Status operator()(std::int32_t value) const {
        const std::size_t before = key.size();
        if (column.type == ColumnType::Byte) {
            key += static_cast<char>(value);
        } else if (column.type == ColumnType::Integer) {
            AppendInteger(static_cast<std::int16_t>(value), key);
        } else if (column.type == ColumnType::Long) {
            AppendInteger(value, key);
        } else {
            return Mismatch();
        }
        return Direction(key.size() - before);
    }
    Status operator()(const Currency& value) const {
        if (column.type != ColumnType::Currency) return Mismatch();
        AppendInteger(value.tenThousandths, key);
        return Direction(8);
    }
    Status operator()(float value) const {
        if (column.type != ColumnType::Single) return Mismatch();
        AppendReal<std::uint32_t>(value, key);
        return Direction(4);
    }
    Status operator()(double value) const {
        if (column.type != ColumnType::Double) return Mismatch();
        AppendReal<std::uint64_t>(value, key);
        return Direction(8);
    }
    Status operator()(const Date& value) const {
        if (column.type != ColumnType::DateTime) return Mismatch();
        AppendReal<std::uint64_t>(value.days, key);
        return Direction(8);
    }
    Status operator()(const std::u16string& value) const {
        if (!column.IsText()) return Mismatch();
        AppendTextKey(value, ascending, key);
        return {};
    }
    Status operator()(const Binary& value) const {
        if (column.type != ColumnType::Binary) return Mismatch();
        AppendBlocks(value, ascending, key);
        return {};
    }
    Status operator()(const Guid& value) const {
        if (column.type != ColumnType::Guid) return Mismatch();
        AppendBlocks(value.bytes, ascending, key);
        return {};
    }
    Status operator()(const Decimal& value) const {
        if (column.type != ColumnType::Numeric) return Mismatch();
        AppendDecimal(value, ascending, key);
        return {};
    }
    Status operator()(const LongValue&) const { return Mismatch(); }

private:
    Status Direction(std::size_t size) const {
        if (!ascending) Complement(key, key.size() - size);
        return {};
    }
    Status Mismatch() const {
        return Status::BadArgument("column \"" + column.name + "\": a value of another type");
    }
};

}  // namespace

bool CanEncodeKey(const Column& column) {
    if (column.IsText()) {
        return column.collationLcid == kGeneralLcid && column.collationVersion == kGeneralVersion;
    }
    switch (column.type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::DateTime:
        case ColumnType::Binary:
        case ColumnType::Guid:
        case ColumnType::Numeric:
            return true;
        default:
            return false;
    }
}

Status AppendKey(const Column& column, bool ascending, const Value& value, std::string& key) {
    const bool isNull = value.index() == 0;
    if (isNull) {
        key += ascending ? '\x00' : '\xFF';
    } else {
        key += ascending ? '\x7F' : '\x80';
    }
    return std::visit(Encoder{column, ascending, key}, value);
}

}  // namespace jet
