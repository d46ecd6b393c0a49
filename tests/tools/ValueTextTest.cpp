#include "tools/ValueText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

#include "ToolTesting.h"

namespace tools {
namespace {

template <typename Append>
std::string Text(Append append) {
    return Written([&](std::FILE* stream) {
        TextBuffer out(stream);
        append(out);
        out.Flush();
    });
}

template <typename T>
std::string Number(T value) {
    return Text([&](TextBuffer& out) { AppendNumber(value, out); });
}

TEST(ValueTextTest, NumbersAreShortAndReadBackTheSame) {
    EXPECT_EQ(Number(0.0), "0");
    EXPECT_EQ(Number(-0.0), "-0");
    EXPECT_EQ(Number(100000.0), "100000");
    EXPECT_EQ(Number(0.1), "0.1");
    EXPECT_EQ(Number(0.1F), "0.1");
    EXPECT_EQ(Number(1e300), "1e+300");
    EXPECT_EQ(Number(-2.5), "-2.5");
    EXPECT_EQ(Number(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(Number(std::int32_t{-2147483647 - 1}), "-2147483648");
    for (const double value : {1.0 / 3, 5e-324, 1.7976931348623157e308, 9007199254740993.0}) {
        EXPECT_EQ(std::strtod(Number(value).c_str(), nullptr), value);
    }
}

TEST(ValueTextTest, MoneyAndDecimalsHaveNoTrailingZeros) {
    EXPECT_EQ(Number(jet::Currency{0}), "0");
    EXPECT_EQ(Number(jet::Currency{-5}), "-0.0005");
    EXPECT_EQ(Number(jet::Currency{123000}), "12.3");
    EXPECT_EQ(Number(jet::Currency{INT64_MIN}), "-922337203685477.5808");
    jet::Decimal decimal;
    decimal.scale = 3;
    EXPECT_EQ(Number(decimal), "0");
    decimal.negative = true;
    EXPECT_EQ(Number(decimal), "0") << "there is no negative zero";
    decimal.magnitude[14] = std::byte{0x30};
    decimal.magnitude[15] = std::byte{0x39};
    EXPECT_EQ(Number(decimal), "-12.345");
    decimal.magnitude.fill(std::byte{0xFF});
    EXPECT_EQ(Number(decimal), "-340282366920938463463374607431768211.455");
}

TEST(ValueTextTest, DatesAreIsoDates) {
    const auto date = [](double days) {
        return Text([&](TextBuffer& out) { AppendDate(jet::Date{days}, out); });
    };
    EXPECT_EQ(date(0), "1899-12-30T00:00:00");
    EXPECT_EQ(date(-1.25), "1899-12-29T06:00:00") << "the time counts forward before day 0 too";
    EXPECT_EQ(date(36526.5), "2000-01-01T12:00:00");
    EXPECT_EQ(date(45000 + 1.5 / 86400), "2023-03-15T00:00:01.500");
    EXPECT_EQ(date(45000.999999999), "2023-03-16T00:00:00") << "rounded up to midnight";
    EXPECT_EQ(date(2958465), "9999-12-31T00:00:00");
    EXPECT_EQ(date(2958466), "2958466") << "no date that ISO 8601 could write";
    EXPECT_EQ(date(std::nan("")), "nan");
}

}  // namespace
}  // namespace tools
