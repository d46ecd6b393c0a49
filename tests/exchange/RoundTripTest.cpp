#include <gtest/gtest.h>

#include <map>
#include <random>

#include "ado/FileCheck.h"
#include "exchange/ExchangeTesting.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

const char* const kProjects[] = {KV_EXAMPLES "/Brauerei.kvs", KV_TEST_DATA "/Grenzfaelle.kvs",
                                 KV_TEST_DATA "/Leer.kvs", KV_TEST_DATA "/Stadtwerke.kvs"};

TEST(RoundTripTest, WhatIsExportedAndImportedUnchangedChangesNoByte) {
    const CsvForm forms[] = {
        CsvFormOf("C"),
        CsvFormOf("de_DE.UTF-8"),
        {csv::Encoding::Utf8, '\t', ',', false},
        {csv::Encoding::Utf8, ',', ',', true},
        {csv::Encoding::Windows1252, ';', '.', false},
    };
    for (const char* original : kProjects) {
        Project project(original);
        const std::string before = project.Bytes();
        // The larger project in two forms: each takes its time.
        const bool isLarge = original == kProjects[3];
        for (std::size_t i = isLarge ? std::size(forms) - 2 : 0; i < std::size(forms); ++i) {
            const char* language = i % 2 == 0 ? "de" : "en";
            const MatchBy by = i % 2 == 0 ? MatchBy::Id : MatchBy::Both;
            for (const SheetKind kind : {SheetKind::Archives, SheetKind::Trends}) {
                const std::string text = Exported(project.connection, kind, forms[i], language);
                const Plan plan = Planned(project.connection, text, {by}, forms[i].encoding);
                EXPECT_TRUE(plan.rows.empty()) << original << i << text;
                EXPECT_TRUE(Apply(project.connection, plan));
            }
        }
        EXPECT_TRUE(project.Bytes() == before) << original;
    }
}

// A locale decides on separator and decimal sign whether it is installed or not.
TEST(RoundTripTest, ASpreadsheetsFormIsTheLocales) {
    const struct {
        const char* locale;
        char separator;
        char decimal;
    } cases[] = {{"", ',', '.'},
                 {"C", ',', '.'},
                 {"POSIX", ',', '.'},
                 {"en_GB.UTF-8", ',', '.'},
                 {"de_DE.UTF-8", ';', ','},
                 {"de_CH", ';', '.'},
                 {"fr_FR@euro", ';', ','},
                 {"es_MX.UTF-8", ',', '.'},
                 {"ja_JP", ',', '.'}};
    for (const auto& each : cases) {
        const CsvForm form = CsvFormOf(each.locale);
        EXPECT_EQ(form.separator, each.separator) << each.locale;
        EXPECT_EQ(form.decimal, each.decimal) << each.locale;
    }
}

using Record = std::vector<csv::Field>;

std::vector<Record> RecordsOf(const std::string& text) {
    Bytes bytes(text);
    csv::Reader reader(bytes, {csv::Encoding::Utf8, 0});
    std::vector<Record> records;
    for (Record record; reader.Next(record);) records.push_back(record);
    EXPECT_EQ(reader.Error(), "");
    return records;
}

std::string TextOf(const std::vector<Record>& records) {
    std::string text;
    for (const Record& record : records) {
        for (std::size_t i = 0; i < record.size(); ++i) {
            if (i > 0) text += ';';
            if (!record[i]) continue;
            text += '"';
            for (const char c : *record[i]) text += std::string(c == '"' ? 2 : 1, c);
            text += '"';
        }
        text += '\n';
    }
    return text;
}

/// Values for a column, other ones each time, in the form in which they are exported.
class Values {
public:
    explicit Values(unsigned number) : random_(number) {}

    csv::Field Next(const SheetColumn& column, const words::Language& language) {
        const bool isNull = Pick(8) == 0 && !IsNeeded(column);
        if (isNull) return std::nullopt;
        if (!column.codes.empty()) {
            return unicode::ToUtf8(language.Text(column.codes[Pick(column.codes.size())].text));
        }
        if (column.IsText()) return Text(column);
        if (column.meaning->kind == project::Kind::Colour) {
            char text[8];
            std::snprintf(text, sizeof text, "#%06X", static_cast<unsigned>(Pick(0x1000000)));
            return text;
        }
        const bool isWhole = column.field.type != ado::DataType::Double;
        if (isWhole) return std::to_string(Pick(30000));
        // Digits that a binary fraction ends with, so that no other text reads the same.
        const std::size_t fraction = Pick(4) * 25;
        return std::to_string(static_cast<int>(Pick(2000)) - 1000) +
               (fraction > 0 ? (fraction == 50 ? ",5" : "," + std::to_string(fraction)) : "");
    }
    std::size_t Pick(std::size_t below) { return random_() % below; }

private:
    static bool IsNeeded(const SheetColumn& column) {
        return column.role == SheetColumn::Role::Bits || column.field.name == "NewFile" ||
               (column.meaning != nullptr && column.meaning->required);
    }
    csv::Field Text(const SheetColumn& column) {
        static const char* const kTexts[] = {"a;b", "a\"b", "two\r\nlines", "Grüße €",  "x,y\t",
                                             "1,5", "'=A1", "007",          " blanks ", "½ 水"};
        const bool isEmpty = Pick(10) == 0 && !IsNeeded(column);
        if (isEmpty) return "";
        return kTexts[Pick(std::size(kTexts))] + std::to_string(++count_);
    }

    std::mt19937 random_;
    std::size_t count_ = 0;
};

std::map<std::string, Record> ById(const std::vector<Record>& records) {
    std::map<std::string, Record> rows;
    for (std::size_t i = 1; i < records.size(); ++i) rows[records[i].front().value()] = records[i];
    return rows;
}

// What is edited in the exported file is exported again.
TEST(RoundTripTest, AThousandEditsArriveExactly) {
    const words::Language& german = *words::FindLanguage("de");
    const CsvForm form = CsvFormOf("de_DE");
    for (const char* original : {kProjects[0], kProjects[3]}) {
        for (const SheetKind kind : {SheetKind::Archives, SheetKind::Trends}) {
            Project project(original);
            Values values(static_cast<unsigned>(kind) + 17);
            const Sheet sheet(project.connection, kind);
            auto records = RecordsOf(Exported(project.connection, kind, form, "de"));
            for (int edit = 0; edit < 1000; ++edit) {
                Record& row = records[1 + values.Pick(records.size() - 1)];
                const std::size_t column = 1 + values.Pick(row.size() - 1);
                const SheetColumn& it = sheet.Columns()[column];
                if (it.role == SheetColumn::Role::Archive) continue;
                row[column] = values.Next(it, german);
            }
            const Plan plan = Planned(project.connection, TextOf(records));
            for (const PlannedRow& row : plan.rows) {
                EXPECT_EQ(row.cause, PlannedRow::Cause::None) << row.line;
            }
            ASSERT_TRUE(Apply(project.connection, plan));
            const auto after = RecordsOf(Exported(project.connection, kind, form, "de"));
            EXPECT_EQ(ById(after), ById(records)) << original;
            EXPECT_TRUE(Planned(project.connection, TextOf(records)).rows.empty());
            EXPECT_TRUE(ado::CheckFile(project.Path()).errors.empty());
        }
    }
}

// A project's trends, put into another one as new ones.
TEST(RoundTripTest, NewRowsGetAllThatTheyHadElsewhere) {
    Project from(kProjects[0]);
    Project to(kProjects[2]);
    for (const SheetKind kind : {SheetKind::Archives, SheetKind::Trends}) {
        const std::string text = Exported(from.connection, kind);
        const Plan plan = Planned(to.connection, text);
        EXPECT_EQ(plan.Count(PlannedRow::State::New), plan.rows.size());
        ASSERT_TRUE(Apply(to.connection, plan));
        auto there = RecordsOf(text);
        auto here = RecordsOf(Exported(to.connection, kind));
        ASSERT_EQ(there.size(), here.size());
        for (std::size_t i = 1; i < there.size(); ++i) {
            there[i].front() = here[i].front();
            EXPECT_EQ(there[i], here[i]);
        }
        EXPECT_TRUE(Planned(to.connection, text, {MatchBy::Name}).rows.empty());
    }
    EXPECT_TRUE(ado::CheckFile(to.Path()).errors.empty());
}

}  // namespace
}  // namespace exchange
