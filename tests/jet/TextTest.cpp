#include "jet/row/RowEncoder.h"
#include "jet/row/TextDecoder.h"
#include "jet/TextKey.h"
#include "JetTesting.h"

namespace jet {
namespace {

std::string FromHex(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

/// "a\u00E4": a text in quotes with its escapes.
std::u16string Unquote(const std::string& quoted) {
    std::u16string text;
    for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
        if (quoted[i] == '\\') {
            text += static_cast<char16_t>(std::stoi(quoted.substr(i + 2, 4), nullptr, 16));
            i += 5;
        } else {
            text += static_cast<char16_t>(quoted[i]);
        }
    }
    return text;
}

TEST(TextTest, KeysAreThoseOfTheExamples) {
    std::ifstream in(TestData("text-key-examples.tsv"));
    std::string line;
    std::getline(in, line);
    int count = 0;
    while (std::getline(in, line)) {
        SCOPED_TRACE(line.substr(0, 60));
        std::vector<std::string> fields(1);
        for (const char c : line) {
            if (c == '\t') {
                fields.emplace_back();
            } else {
                fields.back() += c;
            }
        }
        ASSERT_GE(fields.size(), 5U);
        const std::u16string text = Unquote(fields[1]);
        EXPECT_EQ(text.size(), std::stoul(fields[2]));
        std::string ascending = "\x7F";
        AppendTextKey(text, true, ascending);
        EXPECT_EQ(ascending, FromHex(fields[3]));
        std::string descending = "\x80";
        AppendTextKey(text, false, descending);
        EXPECT_EQ(descending, FromHex(fields[4]));
        ++count;
    }
    EXPECT_EQ(count, 130);
}

TEST(TextTest, DecodesEveryFormInPiecesOfAnySize) {
    struct Case {
        const char* hex;
        std::u16string text;
    };
    const Case cases[] = {
        {"", u""},
        {"FFFE", u""},
        {"FFFE416CE4", u"Alä"},
        {"41006C00E400", u"Alä"},
        {"FF004100", u"\u00FFA"},
        {"FF", u""},
        {"FFFE4100AC20004243", u"A\u20ACBC"},
        {"FFFE41003DD8C0DE", u"A\xD83D\xDEC0"},
        {"410042", u"A"},
    };
    for (const Case& c : cases) {
        const std::string bytes = FromHex(c.hex);
        for (std::size_t piece = 1; piece <= bytes.size() + 1; ++piece) {
            SCOPED_TRACE(std::string(c.hex) + " in pieces of " + std::to_string(piece));
            TextDecoder decoder(nullptr);
            std::u16string text;
            for (std::size_t at = 0; at < bytes.size(); at += piece) {
                decoder.Append(
                    std::as_bytes(std::span(bytes)).subspan(at, std::min(piece, bytes.size() - at)),
                    text);
            }
            EXPECT_EQ(text, c.text);
        }
    }
}

// U+FEFF looks like the mark of the compressed form.
TEST(TextTest, ALeadingMarkIsPartOfTheText) {
    Column column;
    column.type = ColumnType::Memo;
    for (const std::u16string text : {u"\uFEFF", u"\uFEFF\uFEFF", u"\uFEFFabc", u"\uFEFF ä\xFF",
                                      u"\uFEFFa\u20AC b", u"a\uFEFF", u"\uFFFE", u""}) {
        SCOPED_TRACE(ToUtf8(text));
        std::u16string decoded;
        TextDecoder(nullptr).Append(Must(EncodeText(column, text)), decoded);
        EXPECT_EQ(decoded, text);
    }
    for (const std::u16string text : {u"\uFEFF\u0100", u"\uFEFFa\u4E00"}) {
        EXPECT_EQ(EncodeText(column, text).GetStatusOrOk().Code(), StatusCode::BadArgument);
    }
    // A Text column holds it too, as far as there is room for the longer form.
    column.type = ColumnType::Text;
    column.length = 20;
    EXPECT_TRUE(EncodeValue(column, std::u16string(u"\uFEFFabc")).IsOk());
    EXPECT_TRUE(EncodeValue(column, u"\uFEFF" + std::u16string(9, u'a')).IsOk());
    EXPECT_EQ(EncodeValue(column, u"\uFEFF" + std::u16string(9, u'\u20AC')).GetStatus().Code(),
              StatusCode::TooLong);
}

TEST(TextTest, Utf8GoesThereAndBackAndMarksWhatIsNoText) {
    struct Case {
        std::u16string utf16;
        std::string utf8;
    };
    const Case cases[] = {{u"A\u00E4\u20AC\xD83D\xDE00", "A\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
                          {std::u16string(1, u'\0'), std::string(1, '\0')}};
    for (const Case& c : cases) {
        EXPECT_EQ(ToUtf8(c.utf16), c.utf8);
        EXPECT_EQ(ToUtf16(c.utf8), c.utf16);
    }
    EXPECT_EQ(ToUtf8(u"a\xD83Dz\xDE00"), "a\xEF\xBF\xBDz\xEF\xBF\xBD");
    for (const char* broken : {"\xFF", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xE2\x82"}) {
        EXPECT_EQ(ToUtf16(broken).front(), u'\uFFFD') << broken;
    }
}

}  // namespace
}  // namespace jet
