// Makes a large project for measuring, as the studio and the editor would: with the tables of a new
// project, and rows through recordsets.
//
//   make_project OUTPUT ARCHIVES TRENDS      TRENDS of each archive

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "project/CreateProject.h"

namespace {

// A transaction stays in memory until its commit.
constexpr int kTrendsPerCommit = 20'000;

std::u16string Numbered(std::u16string text, int number) {
    return std::move(text) + ado::ToText(ado::Value(std::int32_t{number}));
}

class ProjectMaker {
public:
    explicit ProjectMaker(const std::string& file) {
        connection_.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file +
                         ";Mode=Read|Write|Share Deny None;");
        archives_.Open("TchrArchives", connection_, ado::CommandType::Table);
        trends_.Open("TchrTrends", connection_, ado::CommandType::Table);
        texts_.Open("TidxTexts", connection_, ado::CommandType::Table);
        groups_.Open("TidxGroups", connection_, ado::CommandType::Table);
    }

    void Fill(int archives, int trends) {
        connection_.BeginTrans();
        int pending = 0;
        for (int i = 1; i <= archives; ++i) {
            AddArchive(i, trends);
            pending += trends;
            if (pending < kTrendsPerCommit) continue;
            connection_.CommitTrans();
            connection_.BeginTrans();
            pending = 0;
        }
        connection_.CommitTrans();
    }

private:
    ado::Value AddText(const std::u16string& text, const ado::Value& parent) {
        texts_.AddNew();
        texts_.Set("ParentID", parent);
        texts_.Set("Name", u"Idx" + text);
        texts_.Set("L1031", text);
        texts_.Set("L1033", text);
        texts_.Update();
        return texts_.Get("ID");
    }

    void AddArchive(int number, int trends) {
        const std::u16string name = Numbered(u"Anlage ", number);
        const ado::Value text = AddText(name, std::int32_t{0});
        archives_.AddNew();
        archives_.Set("Name", name);
        archives_.Set("TextID", text);
        archives_.Set("Type", std::int32_t{1});
        archives_.Set("FileName", Numbered(u"anlage", number));
        archives_.Set("FilePath", std::u16string(u"<ProjectDir>"));
        archives_.Set("SampleMode", std::int32_t{1});
        archives_.Set("ScanTime", std::int32_t{1000});
        archives_.Update();
        const ado::Value id = archives_.Get("ID");
        groups_.AddNew();
        groups_.Set("ParentID", std::int32_t{1});
        groups_.Set("Name", name);
        groups_.Set("Type", std::int32_t{-2});
        groups_.Set("Parameter", id);
        groups_.Update();
        for (int i = 1; i <= trends; ++i) AddTrend(Numbered(name + u" Motor ", i), id, text);
    }

    void AddTrend(const std::u16string& name, const ado::Value& archive, const ado::Value& parent) {
        const ado::Value text = AddText(name, parent);
        trends_.AddNew();
        const std::pair<const char*, ado::Value> values[] = {
            {"Name", name},
            {"ArchiveID", archive},
            {"TextID", text},
            {"TrendVar", u"Anlage.Motor." + name},
            {"Maximum", std::u16string(u"1500")},
            {"Minimum", std::u16string(u"0")},
            {"ErrorValue", std::u16string(u"-99")},
            {"Hysteresis", std::u16string(u"0.5")},
            {"HysteresisMode", std::int32_t{1}},
            {"Factor", 1.0},
            {"Offset", 0.0},
            {"Filter", std::int32_t{0}},
            {"FilterDepth", std::int32_t{0}},
            {"Unit", std::u16string(u"1/min")},
            {"VMax", 1500.0},
            {"VMin", 0.0},
            {"VUpper", 1400.0},
            {"VLower", 100.0},
            {"VLineColor", std::int32_t{255}},
            {"VLineWidth", std::int32_t{1}},
            {"VLineStyle", std::int32_t{0}},
            {"VUpperColor", std::int32_t{65280}},
            {"VLowerColor", std::int32_t{16711680}},
            {"VConfig", std::int32_t{0}},
            {"VDrawMode", std::int32_t{0}},
            {"VMaxSamples", std::int32_t{1000}},
            {"VUnitID", std::int32_t{0}}};
        for (const auto& [field, value] : values) trends_.Set(field, value);
        trends_.Update();
    }

    ado::Connection connection_;
    ado::Recordset archives_;
    ado::Recordset trends_;
    ado::Recordset texts_;
    ado::Recordset groups_;
};

int NumberIn(const char* text) {
    int number = 0;
    const char* end = text + std::strlen(text);
    const auto [last, error] = std::from_chars(text, end, number);
    return error == std::errc() && last == end && number > 0 ? number : 0;
}

}  // namespace

int main(int argc, char** argv) {
    const int archives = argc == 4 ? NumberIn(argv[2]) : 0;
    const int trends = argc == 4 ? NumberIn(argv[3]) : 0;
    if (archives == 0 || trends == 0) {
        std::fputs("Usage: make_project OUTPUT ARCHIVES TRENDS\n", stderr);
        return 2;
    }
    constexpr std::array<std::uint32_t, 2> kLanguages = {1031, 1033};
    try {
        project::CreateProject(argv[1], kLanguages);
        ProjectMaker(argv[1]).Fill(archives, trends);
    } catch (const ado::AdoError& error) {
        std::fprintf(stderr, "make_project: %s\n", error.Description().c_str());
        return 1;
    }
    return 0;
}
