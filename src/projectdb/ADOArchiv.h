#pragma once

#include <array>
#include <memory>
#include <QString>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "project/Changes.h"

/// The data environment: the one connection of the add-in and a command, with its recordset, for
/// every source that the editor uses. Made at first use and thrown away when the connection is
/// closed. For the user-interface thread; failures are ado::AdoError.
class ADOArchiv {
public:
    enum class Command {
        Archives,    // archives, a row each
        tabTrends,   // the trends of one archive with their texts, for the grid; one parameter
        Trends,      // trends, a row each
        IdxTexts,    // index texts: runtime names in the project's languages
        idxTextGrp,  // the tree of text groups
        pdbStructs,  // structure definitions of the project
        pdbVars,     // process variables of the project
        TLanguages,  // languages of the project
    };
    static constexpr std::size_t kCommandCount = 8;

    struct Definition {
        std::string_view name;
        std::string_view source;
        ado::CommandType type;
    };

    [[nodiscard]] static const Definition& DefinitionOf(Command command);

    ADOArchiv() = default;
    ADOArchiv(const ADOArchiv&) = delete;
    ADOArchiv& operator=(const ADOArchiv&) = delete;

    /// Opens the connection on a project file. Does nothing when it is open already, whatever file
    /// it is open on.
    void OpenConnection(const QString& databasePath);
    /// Closes every open recordset, one after another, then the connection.
    void CloseConnection();
    [[nodiscard]] ado::Connection& Connection() noexcept { return connection_; }
    /// Records what is changed through the connection.
    [[nodiscard]] project::ChangeRecorder& Recorder() noexcept { return recorder_; }

    /// The recordset of a command, open or not.
    [[nodiscard]] ado::Recordset& Recordset(Command command);
    /// Opens the recordset of a command; fails when it is open.
    ado::Recordset& Open(Command command, const std::vector<std::u16string>& parameters = {});

    /// Opens it when it is closed, clears its filter and moves to the first row if there is one.
    ado::Recordset& PrepareRecordset(Command command);
    /// Closes it when it is open. A failure while closing is ignored: the rows are not needed any
    /// more, and whoever opens it next gets them anew.
    void CloseRecordset(Command command) noexcept;

private:
    /// The query of the trends as the project can answer it.
    [[nodiscard]] const std::string& TrendQuery();

    ado::Connection connection_;
    project::ChangeRecorder recorder_{connection_};
    std::string trendQuery_;  // empty until it is asked for
    // Behind the connection, which must outlive them.
    std::array<ado::Recordset, kCommandCount> recordsets_;
};
