#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commandline/CommandLine.h"

namespace commandline {
namespace {

using testing::HasSubstr;

Program Pump() {
    return {"pump",
            "2.1",
            "COMMAND [OPTION]...",
            "Moves water.",
            "Exit status: 0.",
            {},
            {{"quiet", "", "no output", 'q'}},
            {{"fill", "TANK", "fill a tank; it's [not] checked: beware", {{"from", "N", "source"}}},
             {"mix",
              "TANK PART...",
              "mix parts into a tank",
              {{"out", "FILE", "where to", 'o'}, {"order", "up|down", "which end is first"}}},
             {"move", "FROM [TO]", "move all of it", {{"out", "FILE", "where to", 'o'}}}}};
}

std::variant<Call, Answer, Mistake> ParseWords(const Program& program,
                                               std::vector<std::string> words) {
    words.insert(words.begin(), std::string(program.name));
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);  // as main is given them
    return Parse(program, static_cast<int>(words.size()), arguments.data());
}

TEST(ParseTest, FindsCommandWordsAndOptionsInAnyOrder) {
    const auto parsed = ParseWords(
        Pump(), {"mix", "-oa", "T1", "--ord=DOWN", "-q", "p", "--ou", "b", "--", "-odd", "--out"});
    const auto* call = std::get_if<Call>(&parsed);
    ASSERT_NE(call, nullptr);
    EXPECT_EQ(call->command, 1U);
    EXPECT_THAT(call->words, testing::ElementsAre("T1", "p", "-odd", "--out"));
    EXPECT_THAT(call->Values("out"), testing::ElementsAre("a", "b"));
    EXPECT_EQ(call->Value("out"), "b");
    EXPECT_EQ(call->Value("order"), "down");
    EXPECT_TRUE(call->Has("quiet"));
    EXPECT_FALSE(call->Has("from"));
}

TEST(ParseTest, SaysWhatIsWrong) {
    const struct {
        std::vector<std::string> words;
        const char* what;
    } rows[] = {
        {{}, "a command is missing"},
        {{"drain"}, "unknown command 'drain'"},
        {{"fill"}, "fill: one TANK is needed"},
        {{"fill", "a", "b"}, "fill: one TANK is needed"},
        {{"mix", "a"}, "mix: TANK and PART are needed"},
        {{"move"}, "move: FROM is needed"},
        {{"move", "a", "b", "c"}, "move: FROM is needed"},
        {{"fill", "a", "--out", "b"}, "fill: --out is for mix and move"},
        {{"mix", "a", "b", "--order=left"}, "mix: unknown order 'left'; there are up and down"},
        {{"mix", "a", "b", "--nonsense"}, "unknown or incomplete option '--nonsense'"},
        {{"mix", "a", "b", "-xq"}, "unknown or incomplete option '-x'"},
        {{"mix", "a", "b", "-qo"}, "unknown or incomplete option '-o'"},
        {{"mix", "a", "b", "--out"}, "unknown or incomplete option '--out'"},
        {{"--completion=cmd"}, "unknown completion 'cmd'; there are bash, zsh and fish"},
    };
    for (const auto& row : rows) {
        const auto parsed = ParseWords(Pump(), row.words);
        const auto* mistake = std::get_if<Mistake>(&parsed);
        ASSERT_NE(mistake, nullptr) << row.what;
        EXPECT_EQ(mistake->text, row.what);
    }
    const Program viewer{"viewer", "1", "[FILE]", "", "", "[FILE]"};
    EXPECT_EQ(std::get<Mistake>(ParseWords(viewer, {"a", "b"})).text,
              "more than one [FILE] is given");
    EXPECT_EQ(std::get<Call>(ParseWords(viewer, {"a"})).words.size(), 1U);
}

TEST(ParseTest, AnswersWithTextsOfTheTable) {
    const std::string help = std::get<Answer>(ParseWords(Pump(), {"mix", "-h"})).text;
    EXPECT_THAT(help, testing::StartsWith("Usage: pump COMMAND [OPTION]...\nMoves water.\n"));
    EXPECT_THAT(help, HasSubstr("\n  mix TANK PART...           mix parts into a tank\n"));
    EXPECT_THAT(help, HasSubstr("\n    -o, --out FILE             where to\n"));
    EXPECT_EQ(std::get<Answer>(ParseWords(Pump(), {"-V"})).text, "pump 2.1\n");
}

}  // namespace
}  // namespace commandline
