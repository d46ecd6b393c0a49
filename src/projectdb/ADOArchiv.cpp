#include "projectdb/ADOArchiv.h"

#include "ado/AdoError.h"
#include "projectdb/Text.h"

namespace {

// Blanks as they stand, two of them before the last column included.
constexpr std::string_view kTrendsOfArchive =
    "SELECT TchrTrends.ID AS ID, TchrTrends.Name AS Name, TchrTrends.ArchiveID, "
    "TchrTrends.TextID, TidxTexts.*, TchrTrends.TrendVar, TchrTrends.Maximum, "
    "TchrTrends.Minimum, TchrTrends.SurrogateMax, TchrTrends.SurrogateMin, "
    "TchrTrends.ErrorValue, TchrTrends.Hysteresis, TchrTrends.HysteresisMode, "
    "TchrTrends.Factor, TchrTrends.Offset, TchrTrends.Filter, TchrTrends.FilterDepth, "
    "TchrTrends.Unit, TchrTrends.`VMax`, TchrTrends.`VMin`, TchrTrends.`VUpper`, "
    "TchrTrends.`VLower`, TchrTrends.`VLineColor`, TchrTrends.`VLineWidth`, "
    "TchrTrends.`VLineStyle`, TchrTrends.`VUpperColor`, TchrTrends.`VLowerColor`, "
    "TchrTrends.`VConfig`, TchrTrends.`VDrawMode`, TchrTrends.`VMaxSamples`, "
    "TchrTrends.`VUnitID`, TchrTrends.Comment,  TidxTexts.ID AS Expr1 FROM TchrTrends, "
    "TidxTexts WHERE (TchrTrends.TextID = TidxTexts.ID) AND (TchrTrends.ArchiveID = Param1 )";

constexpr std::array<ADOArchiv::Definition, ADOArchiv::kCommandCount> kDefinitions = {{
    {"Archives", "TchrArchives", ado::CommandType::Table},
    {"tabTrends", kTrendsOfArchive, ado::CommandType::Text},
    {"Trends", "TchrTrends", ado::CommandType::Table},
    {"IdxTexts", "TidxTexts", ado::CommandType::Table},
    {"idxTextGrp", "TidxGroups", ado::CommandType::Table},
    {"pdbStructs", "TpdbStructs", ado::CommandType::Table},
    {"pdbVars", "TpdbVars", ado::CommandType::Table},
    {"TLanguages", "TcfgLanguages", ado::CommandType::Table},
}};

}  // namespace

const ADOArchiv::Definition& ADOArchiv::DefinitionOf(Command command) {
    return kDefinitions.at(static_cast<std::size_t>(command));
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
}

ado::Recordset& ADOArchiv::Recordset(Command command) {
    return recordsets_.at(static_cast<std::size_t>(command));
}

ado::Recordset& ADOArchiv::Open(Command command, const std::vector<std::u16string>& parameters) {
    const Definition& definition = DefinitionOf(command);
    ado::Recordset& recordset = Recordset(command);
    recordset.Open(definition.source, connection_, definition.type, parameters);
    return recordset;
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
