#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <map>
#include <QStringList>
#include <QTemporaryDir>
#include <set>
#include <string>
#include <vector>

#include "ado/AdoError.h"
#include "ado/CreateFile.h"
#include "projectdb/Hierarchy.h"

/// Everything that a project file holds, as another program finds it: by table the rows in the
/// order of their keys, each as "ID=3|Name=Sudhaus|TextID=7" without the fields that are Null.
using Content = std::map<std::string, std::vector<std::string>>;

[[nodiscard]] Content ReadContent(const std::string& path);
/// What jet::Check finds wrong in a file, warnings included, but for the different keys that an
/// index has had, and what other programs leave in rows they have deleted.
/// `expected` is part of a warning more that is no error.
[[nodiscard]] std::vector<std::string> ErrorsIn(const std::string& path,
                                                const std::string& expected = {});
/// The number of the AdoError that `action` throws; 0 when it throws none.
[[nodiscard]] std::int32_t ErrorOf(const std::function<void()>& action);

struct FakeStatus final : projectdb::IStatusPanels {
    [[nodiscard]] QString PanelText(int panel) const override { return panels[panel - 1]; }
    void SetPanelText(int panel, const QString& text) override {
        panels[panel - 1] = text;
        if (panel == 1) ++firstPanelWrites;
    }

    QStringList panels{QString(), QString(), QString()};
    int firstPanelWrites = 0;
};

/// Keeps what the trend split would show.
class FakeWindow : public projectdb::IEditorWindow {
public:
    explicit FakeWindow(projectdb::ProjectContext& project) : project_(project) {}

    void ReleaseTrends() override { trends.clear(); }
    void TrendsReloaded() override;
    void NamesInGroup(QStringView group) override { rebuilt += group.toString(); }

    QStringList trends;   // names
    QStringList rebuilt;  // groups whose names were read again

private:
    projectdb::ProjectContext& project_;
};

/// A project file in a folder of its own, opened through a data environment. What a test leaves
/// behind must be in order, and nothing may be left in the middle of being edited.
class ProjectTest : public testing::Test {
protected:
    ~ProjectTest() override;

    void OpenCopy(const std::string& source);
    void OpenBrewery() { OpenCopy(KV_EXAMPLES "/Brauerei.kvs"); }
    void OpenEdgeCases() { OpenCopy(KV_TEST_DATA "/Grenzfaelle.kvs"); }
    void OpenEmpty() { OpenCopy(KV_TEST_DATA "/Leer.kvs"); }
    /// A new project in German and English, as the studio makes it.
    void OpenNew();
    /// A new project whose tables `change` has altered.
    void OpenAltered(const std::function<void(ado::NewTable&)>& change);
    /// Adds a row from the outside; fields that are not named are Null. Returns its ID.
    std::int32_t Insert(const std::string& table, const std::map<std::string, ado::Value>& fields);

    /// Adds a group of another editor that has the number of an archive too; only the type tells
    /// them apart.
    void InsertForeignGroup(std::int32_t archiveId);

    [[nodiscard]] Content Read() const { return ReadContent(path_); }
    [[nodiscard]] ADOArchiv& Environment() { return project_.Environment(); }

    QTemporaryDir folder_;
    std::string path_;
    std::string expectedWarning_;  // of the check at the end; none when empty
    projectdb::ProjectContext project_;
    FakeStatus status_;
    FakeWindow window_{project_};

private:
    void Open();
};

/// Takes the rows with these IDs out.
void Erase(std::vector<std::string>& rows, const std::set<std::int32_t>& ids);
/// Puts another row into the place of the one with the same ID, or behind all others.
void Put(std::vector<std::string>& rows, const std::string& row);
/// The row with this ID.
[[nodiscard]] std::string RowOf(const std::vector<std::string>& rows, std::int32_t id);
/// The same row with one text in place of another.
[[nodiscard]] std::string Replaced(std::string row, const std::string& from, const std::string& to);
