#include "ado/detail/Convert.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "ado/AdoError.h"

namespace ado {
namespace {

constexpr std::pair<jet::ColumnType, DataType> kTypes[] = {
    {jet::ColumnType::Boolean, DataType::Boolean},
    {jet::ColumnType::Byte, DataType::UnsignedTinyInt},
    {jet::ColumnType::Integer, DataType::SmallInt},
    {jet::ColumnType::Long, DataType::Integer},
    {jet::ColumnType::Currency, DataType::Currency},
    {jet::ColumnType::Single, DataType::Single},
    {jet::ColumnType::Double, DataType::Double},
    {jet::ColumnType::DateTime, DataType::Date},
    {jet::ColumnType::Text, DataType::VarWChar},
    {jet::ColumnType::Memo, DataType::LongVarWChar},
    {jet::ColumnType::Guid, DataType::Guid},
    {jet::ColumnType::Numeric, DataType::Numeric},
    {jet::ColumnType::Binary, DataType::VarBinary},
    {jet::ColumnType::Ole, DataType::LongVarBinary},
};

struct StoredToValue {
    const jet::Table& table;

    jet::Result<Value> operator()(const jet::Null&) const { return Value(); }
    jet::Result<Value> operator()(bool value) const { return Value(value); }
    jet::Result<Value> operator()(std::int32_t value) const { return Value(value); }
    jet::Result<Value> operator()(float value) const { return Value(value); }
    jet::Result<Value> operator()(double value) const { return Value(value); }
    jet::Result<Value> operator()(const std::u16string& value) const { return Value(value); }
    jet::Result<Value> operator()(const jet::Binary& value) const { return Value(value); }
    jet::Result<Value> operator()(const jet::Currency& value) const {
        return Value(Currency{value.tenThousandths});
    }
    jet::Result<Value> operator()(const jet::Date& value) const { return Value(Date{value.days}); }
    jet::Result<Value> operator()(const jet::Guid& value) const { return Value(Guid{value.bytes}); }
    jet::Result<Value> operator()(const jet::Decimal& value) const {
        return Value(Decimal{value.negative, value.scale, value.magnitude});
    }
    jet::Result<Value> operator()(const jet::LongValue& value) const {
        if (value.isText) {
            auto text = table.ReadMemo(value);
            if (!text.IsOk()) return text.GetStatus();
            return Value(std::move(*text));
        }
        auto bytes = table.ReadBinary(value);
        if (!bytes.IsOk()) return bytes.GetStatus();
        return Value(std::move(*bytes));
    }
};

double DecimalToDouble(const Decimal& value) {
    double number = 0;
    for (const std::byte b : value.magnitude) number = number * 256 + static_cast<double>(b);
    number /= std::pow(10.0, value.scale);
    return value.negative ? -number : number;
}

std::optional<jet::Value> ToInteger(const Value& value, double lowest, double highest) {
    const std::optional<double> number = AsNumber(value);
    if (!number || std::trunc(*number) != *number || *number < lowest || *number > highest) {
        return std::nullopt;
    }
    return jet::Value(static_cast<std::int32_t>(*number));
}

template <typename T>
std::optional<jet::Value> Exactly(const Value& value) {
    if (const T* exact = std::get_if<T>(&value)) return jet::Value(*exact);
    return std::nullopt;
}

}  // namespace

DataType TypeOf(const jet::Column& column) {
    for (const auto& [stored, type] : kTypes) {
        if (stored == column.type) return type;
    }
    return DataType::LongVarBinary;
}

jet::ColumnType ColumnTypeOf(DataType type) {
    for (const auto& [stored, each] : kTypes) {
        if (each == type) return stored;
    }
    return jet::ColumnType::Ole;
}

jet::Result<Value> FromStored(const jet::Table& table, const jet::Value& stored) {
    return std::visit(StoredToValue{table}, stored);
}

jet::Status AssignStored(const jet::Table& table, const jet::Value& stored, Value& value) {
    if (const auto* text = std::get_if<std::u16string>(&stored)) {
        if (auto* old = std::get_if<std::u16string>(&value)) {
            *old = *text;
        } else {
            value = *text;
        }
        return {};
    }
    auto converted = FromStored(table, stored);
    if (converted.IsOk()) value = std::move(*converted);
    return converted.GetStatusOrOk();
}

std::optional<double> AsNumber(const Value& value) {
    if (const auto* b = std::get_if<bool>(&value)) return *b ? -1.0 : 0.0;
    if (const auto* i = std::get_if<std::int32_t>(&value)) return *i;
    if (const auto* f = std::get_if<float>(&value)) return *f;
    if (const auto* d = std::get_if<double>(&value)) return *d;
    if (const auto* c = std::get_if<Currency>(&value)) {
        return static_cast<double>(c->tenThousandths) / 10000;
    }
    if (const auto* t = std::get_if<Date>(&value)) return t->days;
    if (const auto* n = std::get_if<Decimal>(&value)) return DecimalToDouble(*n);
    if (const auto* s = std::get_if<std::u16string>(&value)) return ToNumber(*s);
    return std::nullopt;
}

std::optional<jet::Value> ToStored(const jet::Column& column, const Value& value) {
    if (IsNull(value)) return jet::Value();
    const std::optional<double> number = AsNumber(value);
    switch (column.type) {
        case jet::ColumnType::Boolean:
            if (!number || (*number != 0 && *number != -1)) return std::nullopt;
            return jet::Value(*number != 0);
        case jet::ColumnType::Byte:
            return ToInteger(value, 0, 255);
        case jet::ColumnType::Integer:
            return ToInteger(value, -32768, 32767);
        case jet::ColumnType::Long:
            return ToInteger(value, -2147483648.0, 2147483647.0);
        case jet::ColumnType::Single:
            if (!number || static_cast<double>(static_cast<float>(*number)) != *number) {
                return std::nullopt;
            }
            return jet::Value(static_cast<float>(*number) + 0.0F);
        case jet::ColumnType::Double:
            if (!number) return std::nullopt;
            return jet::Value(*number + 0.0);  // never -0, whose key is another
        case jet::ColumnType::DateTime:
            if (!number) return std::nullopt;
            return jet::Value(jet::Date{*number + 0.0});
        case jet::ColumnType::Text:
        case jet::ColumnType::Memo:
            return Exactly<std::u16string>(value);
        case jet::ColumnType::Binary:
            return Exactly<Binary>(value);
        default:
            return std::nullopt;
    }
}

namespace {

// In ten-thousandths, as far as a double tells numbers apart.
constexpr double kLowestAmount = -9223372036854775808.0;
constexpr double kHighestAmount = 9223372036854774784.0;

[[noreturn]] void ThrowWrongType(const jet::Column& column) {
    throw AdoError(ErrorNumber::kWrongType,
                   "The value has a type that column \"" + column.name + "\" cannot take.",
                   {reasons::Cause::WrongType, {}, column.name});
}

/// Rounded to the nearest whole number, halves to the even one.
std::int64_t Whole(const jet::Column& column, double number, double lowest, double highest) {
    const double rounded = std::nearbyint(number);
    if (!(rounded >= lowest && rounded <= highest)) {
        throw AdoError(ErrorNumber::kDoesNotFit,
                       "The number is out of the range of column \"" + column.name + "\".",
                       {reasons::Cause::NumberTooLarge, {}, column.name});
    }
    return static_cast<std::int64_t>(rounded);
}

jet::Value TextFor(const jet::Column& column, const Value& value) {
    const bool isBytes =
        std::holds_alternative<Binary>(value) || std::holds_alternative<Guid>(value);
    if (isBytes) ThrowWrongType(column);
    std::u16string text = ToText(value);
    const std::size_t most = column.length / 2;
    if (column.type == jet::ColumnType::Text && text.size() > most) {
        throw AdoError(
            ErrorNumber::kDoesNotFit,
            "The text has " + std::to_string(text.size()) + " characters; column \"" + column.name +
                "\" takes " + std::to_string(most) + ".",
            {reasons::Cause::TextTooLong, {}, column.name, static_cast<std::int64_t>(most)});
    }
    return text;
}

[[noreturn]] void ThrowTooManyPlaces(const jet::Column& column) {
    throw AdoError(ErrorNumber::kDoesNotFit, "The number has more decimal places than the " +
                                                 std::to_string(column.scale) + " of column \"" +
                                                 column.name + "\".");
}

/// Exact for a decimal of the column's scale and for texts; other numbers go by their shortest
/// text.
jet::Value DecimalFor(const jet::Column& column, const Value& value) {
    if (const auto* decimal = std::get_if<Decimal>(&value);
        decimal != nullptr && decimal->scale == column.scale) {
        return jet::Decimal{decimal->negative, decimal->scale, decimal->magnitude};
    }
    const bool isText = std::holds_alternative<std::u16string>(value);
    const std::u16string text = ToText(value);
    jet::Decimal result;
    result.scale = column.scale;
    std::size_t at = 0;
    if (!text.empty() && (text[0] == u'-' || text[0] == u'+')) result.negative = text[at++] == u'-';
    std::size_t digits = 0;
    std::optional<std::size_t> fraction;  // digits behind the point so far
    const auto append = [&](unsigned digit) {
        for (std::size_t i = result.magnitude.size(); i-- > 0;) {
            digit += 10 * static_cast<unsigned>(result.magnitude[i]);
            result.magnitude[i] = static_cast<std::byte>(digit & 0xFF);
            digit >>= 8;
        }
    };
    for (; at < text.size(); ++at) {
        if (text[at] == u'.' && !fraction) {
            fraction = 0;
            continue;
        }
        if (text[at] < u'0' || text[at] > u'9') ThrowWrongType(column);
        if (fraction && ++*fraction > column.scale) {
            if (isText && text[at] != u'0') ThrowTooManyPlaces(column);
            continue;
        }
        append(static_cast<unsigned>(text[at] - u'0'));
        ++digits;
    }
    if (digits == 0) ThrowWrongType(column);
    for (std::size_t i = std::min<std::size_t>(fraction.value_or(0), column.scale);
         i < column.scale; ++i, ++digits) {
        append(0);
    }
    // The leading zeros of a number count here; a column of 28 digits still takes a usual one.
    if (digits > 38) {
        throw AdoError(ErrorNumber::kDoesNotFit,
                       "The number has too many digits for column \"" + column.name + "\".",
                       {reasons::Cause::NumberTooLarge, {}, column.name});
    }
    return result;
}

}  // namespace

jet::Value ForAssignment(const jet::Column& column, const Value& value) {
    const auto whole = [&](double lowest, double highest) {
        const std::optional<double> number = AsNumber(value);
        if (!number) ThrowWrongType(column);
        return Whole(column, *number, lowest, highest);
    };
    const auto real = [&]() -> double {
        const std::optional<double> number = AsNumber(value);
        if (!number) ThrowWrongType(column);
        return *number;
    };
    // A Boolean has no Null.
    if (column.type == jet::ColumnType::Boolean) return IsNull(value) ? false : real() != 0;
    if (IsNull(value)) return jet::Null{};
    switch (column.type) {
        case jet::ColumnType::Byte:
            return static_cast<std::int32_t>(whole(0, 255));
        case jet::ColumnType::Integer:
            return static_cast<std::int32_t>(whole(-32768, 32767));
        case jet::ColumnType::Long:
            return static_cast<std::int32_t>(whole(-2147483648.0, 2147483647.0));
        case jet::ColumnType::Currency:
            if (const auto* exact = std::get_if<Currency>(&value)) {
                return jet::Currency{exact->tenThousandths};
            }
            if (const auto* text = std::get_if<std::u16string>(&value)) {
                if (const auto amount = ToCurrency(*text)) {
                    return jet::Currency{amount->tenThousandths};
                }
            }
            return jet::Currency{Whole(column, real() * 10000, kLowestAmount, kHighestAmount)};
        case jet::ColumnType::Single: {
            constexpr double kMost = std::numeric_limits<float>::max();
            constexpr double kRoundedToNone = 0x1.FFFFFFp127;  // half a step beyond
            const double number = real();
            if (std::abs(number) >= kRoundedToNone) Whole(column, number, 1, 0);  // never in range
            return static_cast<float>(std::clamp(number, -kMost, kMost));
        }
        case jet::ColumnType::Double:
            return real();
        case jet::ColumnType::DateTime:
            return jet::Date{real()};
        case jet::ColumnType::Text:
        case jet::ColumnType::Memo:
            return TextFor(column, value);
        case jet::ColumnType::Binary:
        case jet::ColumnType::Ole:
            if (const auto* bytes = std::get_if<Binary>(&value)) return *bytes;
            ThrowWrongType(column);
        case jet::ColumnType::Guid:
            if (const auto* guid = std::get_if<Guid>(&value)) return jet::Guid{guid->bytes};
            ThrowWrongType(column);
        case jet::ColumnType::Numeric:
            return DecimalFor(column, value);
        default:
            ThrowWrongType(column);
    }
}

}  // namespace ado
