#include "projectdb/ADOArchiv.h"

#include "ado/AdoError.h"
#include "project/Schema.h"
#include "projectdb/Text.h"

namespace {

using Definitions = std::array<ADOArchiv::Definition, ADOArchiv::kCommandCount>;

const Definitions& AllDefinitions() {
    using enum ado::CommandType;
    static const Definitions definitions = {{
        {"Archives", project::kArchiveTable, Table},
        {"tabTrends", project::TrendQuery(), Text},
        {"Trends", project::kTrendTable, Table},
        {"IdxTexts", project::kTextTable, Table},
        {"idxTextGrp", project::kGroupTable, Table},
        {"pdbStructs", project::kStructTable, Table},
        {"pdbVars", project::kVariableTable, Table},
        {"TLanguages", project::kLanguageTable, Table},
    }};
    return definitions;
}

}  // namespace

const ADOArchiv::Definition& ADOArchiv::DefinitionOf(Command command) {
    return AllDefinitions().at(static_cast<std::size_t>(command));
}

void ADOArchiv::OpenConnection(const QString& databasePath) {
    if (connection_.State() != ado::ObjectState::Closed) return;
    // No quotes around the path, even if it holds a semicolon: the provider copes with it.
    connection_.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
                         projectdb::ToUtf8(databasePath) + ";Mode=Read|Write|Share Deny None;",
                     "", "", -1);
}

void ADOArchiv::CloseConnection() {
    if (connection_.State() != ado::ObjectState::Open) return;
    for (ado::Recordset* recordset : connection_.OpenRecordsets()) recordset->Close();
    connection_.Close();
    trendQuery_.clear();
}

ado::Recordset& ADOArchiv::Recordset(Command command) {
    return recordsets_.at(static_cast<std::size_t>(command));
}

ado::Recordset& ADOArchiv::Open(Command command, const std::vector<std::u16string>& parameters) {
    const Definition& definition = DefinitionOf(command);
    ado::Recordset& recordset = Recordset(command);
    recordset.Open(command == Command::tabTrends ? TrendQuery() : definition.source, connection_,
                   definition.type, parameters);
    return recordset;
}

const std::string& ADOArchiv::TrendQuery() {
    if (trendQuery_.empty()) {
        ado::Recordset trends;
        trends.Open(project::kTrendTable, connection_, ado::CommandType::Table);
        trendQuery_ = project::TrendQuery(trends.Fields());
    }
    return trendQuery_;
}

ado::Recordset& ADOArchiv::PrepareRecordset(Command command) {
    ado::Recordset& recordset = Recordset(command);
    if (recordset.State() == ado::ObjectState::Closed) Open(command);
    recordset.SetFilter("");
    if (!(recordset.IsBOF() && recordset.IsEOF())) recordset.MoveFirst();
    return recordset;
}

void ADOArchiv::CloseRecordset(Command command) noexcept {
    ado::Recordset& recordset = Recordset(command);
    if (recordset.State() != ado::ObjectState::Open) return;
    try {
        recordset.Close();
    } catch (const ado::AdoError&) {
        // Deliberately ignored, as the header says.
    }
}
