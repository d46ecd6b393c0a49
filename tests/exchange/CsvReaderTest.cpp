#include "csv/Reader.h"

#include <gtest/gtest.h>

#include <utility>

#include "csv/Encoding.h"
#include "exchange/ExchangeTesting.h"

namespace csv {
namespace {

/// Records as "a|b;c", a Null as "-", then what is wrong.
std::string ReadAll(Source& in, Form form) {
    Reader reader(in, form);
    std::string out;
    for (std::vector<Field> record; reader.Next(record);) {
        if (!out.empty()) out += ';';
        for (std::size_t i = 0; i < record.size(); ++i) {
            out += (i > 0 ? "|" : "") + record[i].value_or("-");
        }
    }
    return out + (reader.Error().empty() ? "" : " " + reader.Error());
}

// Wherever the pieces end in which a file comes.
TEST(CsvReaderTest, ReadsWhatSpreadsheetsWrite) {
    const struct {
        const char* text;
        const char* records;
        char separator = ',';
    } cases[] = {
        {"a,b\r\nc,\r\n,\"\"\n", "a|b;c|-;-|"},
        {"a\n\"x\"\"y\"\n\"\"\"\"", "a;x\"y;\""},
        {"a,b,c\nd\ne,f", "a|b|c;d;e|f"},
        {"a\nb\rc,d\r\n\r", "a;b\rc|d;\r"},
        {"\xEF\xBB\xBF"
         "a,b\n",
         "a|b"},
        {"\"x\ny,z\";b;c\nd;e;f\n", "x\ny,z|b|c;d|e|f", '\0'},
        {"a\n\"b\"\r,c\n",
         "a input: Line 2: something stands between a closing quote and the next"
         " separator"},
        {"a\n\"b\nc\",d\n\"e", "a;b\nc|d input: Line 4: a closing quote is missing"},
        {"a\n\"b\nc\",\"d\n\xFF\"\n",
         "a input: Line 4: column 2, character 3: the byte FF is no UTF-8; --encoding windows-1252 "
         "reads what older spreadsheets write"},
    };
    for (const auto& each : cases) {
        for (const std::size_t piece : {1U, 2U, 3U, 100U}) {
            // The heading has to come in one piece where the separator is looked for in it.
            if (each.separator == '\0' && piece < 100) continue;
            exchange::Bytes in(each.text, piece);
            EXPECT_EQ(ReadAll(in, {Encoding::Utf8, each.separator}), each.records) << piece;
        }
    }
}

/// A file that cannot be read to its end.
class BrokenFile final : public Source {
public:
    std::string_view Next() override {
        if (isRead_) error_ = "the disk is gone";
        return std::exchange(isRead_, true) ? std::string_view() : std::string_view("a\nb,c");
    }
    const std::string& Error() const override { return error_; }
    const std::string& Name() const override { return name_; }

private:
    bool isRead_ = false;
    std::string error_;
    std::string name_ = "input";
};

TEST(CsvReaderTest, WhatAFailureHasCutIsNoRecord) {
    BrokenFile in;
    EXPECT_EQ(ReadAll(in, {}), "a the disk is gone");
}

TEST(CsvReaderTest, AnEncodingHasItsOwnCharactersAndNoOthers) {
    std::string text = "\xE2\x82\xAC \xC3\xBC \xC2\xA0";
    ASSERT_TRUE(FromUtf8(text, Encoding::Windows1252));
    EXPECT_EQ(text, "\x80 \xFC \xA0");
    EXPECT_FALSE(FirstBadByte(text, Encoding::Windows1252));
    ToUtf8(text, Encoding::Windows1252);
    EXPECT_EQ(text, "\xE2\x82\xAC \xC3\xBC \xC2\xA0");
    EXPECT_EQ(FirstBadByte("ab\x81", Encoding::Windows1252), 2U);
    for (const char* other : {"\xC2\x81", "\xE2\x98\x83", "\xF0\x9F\x98\x80"}) {
        text = other;
        EXPECT_FALSE(FromUtf8(text, Encoding::Windows1252)) << other;
    }
}

}  // namespace
}  // namespace csv
