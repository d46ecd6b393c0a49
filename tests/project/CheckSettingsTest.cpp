#include "project/CheckSettings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "ado/AdoError.h"
#include "ProjectTesting.h"

namespace project {
namespace {

constexpr const char* kToday = "2026-11-22";

Acceptance AcceptanceOf(const Finding& finding, std::string until = {}) {
    return {std::string(InfoOf(finding.rule).id),
            PlaceOf(finding),
            FingerprintOf(finding),
            "whatever\nit says",
            "as wired",
            "mk",
            std::move(until)};
}

struct AcceptedProject : TestProject {
    AcceptedProject() {
        AddInOrder();
        Set({{kTrendTable, 1, "VMin", 101}});
    }
    [[nodiscard]] std::vector<Finding> Findings() { return CheckProject(connection).findings; }
    [[nodiscard]] Judgement Judge(const char* today = kToday) {
        return CheckSettings::Load(settings).Judge(Findings(), today);
    }
    const std::string settings = CheckSettings::FileOf(path);
};

TEST(CheckSettingsTest, AnAcceptanceHoldsUntilItsDayAndAsLongAsTheValuesDo) {
    AcceptedProject project;
    AddAcceptances(project.settings, {AcceptanceOf(project.Findings().at(0), kToday)});
    const Judgement accepted = project.Judge();
    EXPECT_TRUE(accepted.open.empty());
    ASSERT_EQ(accepted.accepted.size(), 1U);
    EXPECT_EQ(accepted.accepted[0].why.reason, "as wired");
    EXPECT_TRUE(accepted.unused.empty());

    const Judgement later = project.Judge("2026-11-23");
    EXPECT_EQ(later.open.size(), 1U);
    EXPECT_EQ(later.expired.size(), 1U);
    EXPECT_TRUE(later.unused.empty());

    project.Set({{kTrendTable, 1, "Name", u"renamed"}});
    EXPECT_EQ(project.Judge().accepted.size(), 1U);

    project.Set({{kTrendTable, 1, "VMin", 102}});
    const Judgement changed = project.Judge();
    EXPECT_EQ(changed.open.size(), 1U);
    EXPECT_EQ(changed.unused.size(), 1U);
}

TEST(CheckSettingsTest, WhatStandsInTheFileStays) {
    AcceptedProject project;
    const std::string before =
        "# ours\r\n[severity]\r\nrange-inverted = note\r\n\r\n[accepted]\r\nrule = unlimited\r\n"
        "reason = disks are great";
    std::ofstream(project.settings) << before;
    const CheckSettings settings = CheckSettings::Load(project.settings);
    EXPECT_EQ(settings.Severities()[Rule::RangeInverted], Severity::Note);
    EXPECT_EQ(settings.Accepted().at(0).rule, "unlimited");
    std::filesystem::permissions(project.settings, std::filesystem::perms{0640});

    AddAcceptances(project.settings, {AcceptanceOf(project.Findings().at(0))});
    std::ifstream file(project.settings);
    const std::string after(std::istreambuf_iterator<char>(file), {});
    EXPECT_TRUE(after.starts_with(before)) << after;
    EXPECT_EQ(CheckSettings::Load(project.settings).Accepted().size(), 2U);
    // What could not be read again is not written.
    Acceptance groundless = AcceptanceOf(project.Findings().at(0));
    groundless.reason.clear();
    EXPECT_THROW(AddAcceptances(project.settings, {groundless}), ado::AdoError);
    EXPECT_EQ(CheckSettings::Load(project.settings).Accepted().size(), 2U);
#ifndef _WIN32  // which knows nobody's permissions but the owner's
    EXPECT_EQ(std::filesystem::status(project.settings).permissions(),
              std::filesystem::perms{0640});
#endif
    std::size_t files = 0;
    for (const auto& each : std::filesystem::directory_iterator(project.folder)) {
        files += each.path().filename().string().find("-lint") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(files, 1U);
}

TEST(CheckSettingsTest, WhatIsNotUnderstoodIsNamedWithItsLine) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"rule = unlimited\n", "line 1: a section"},
        {"[severity]\nnonsense = note\n", "line 2: there is no rule nonsense"},
        {"[severity]\nunlimited = loud\n", "line 2: \"loud\" is none of"},
        {"[severity]\nunlimited\n", "line 2: \"unlimited\" is not NAME = VALUE"},
        {"[accepted]\nrule = unlimited\n", "line 2: what is accepted above has no reason"},
        {"[accepted]\nreason = x\n[severity]\n", "line 3: there is no rule \"\""},
        {"[accepted]\nrule = unlimited\nreason = x\nplace = a\n", "needs both place and"},
        {"[accepted]\nrule = unlimited\nreason = x\nuntil = soon\n", "\"soon\" is no day"},
        {"<<<<<<< HEAD\n", "line 1: \"<<<<<<< HEAD\" is not"},
    };
    for (const auto& each : cases) {
        try {
            std::ignore = CheckSettings::Parse(each.text, "plant.kvs-lint");
            ADD_FAILURE() << each.text;
        } catch (const ado::AdoError& error) {
            EXPECT_NE(error.Description().find(each.message), std::string::npos)
                << error.Description();
        }
    }
}

}  // namespace
}  // namespace project
