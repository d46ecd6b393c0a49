#pragma once

/// The statement by which the editor reads the trends of one archive.
inline constexpr const char* kTrendQuery =
    "SELECT TchrTrends.ID AS ID, TchrTrends.Name AS Name, TchrTrends.ArchiveID, "
    "TchrTrends.TextID, TidxTexts.*, TchrTrends.TrendVar, TchrTrends.Maximum, "
    "TchrTrends.Minimum, TchrTrends.SurrogateMax, TchrTrends.SurrogateMin, "
    "TchrTrends.ErrorValue, TchrTrends.Hysteresis, TchrTrends.HysteresisMode, "
    "TchrTrends.Factor, TchrTrends.Offset, TchrTrends.Filter, TchrTrends.FilterDepth, "
    "TchrTrends.Unit, TchrTrends.`VMax`, TchrTrends.`VMin`, TchrTrends.`VUpper`, "
    "TchrTrends.`VLower`, TchrTrends.`VLineColor`, TchrTrends.`VLineWidth`, "
    "TchrTrends.`VLineStyle`, TchrTrends.`VUpperColor`, TchrTrends.`VLowerColor`, "
    "TchrTrends.`VConfig`, TchrTrends.`VDrawMode`, TchrTrends.`VMaxSamples`, "
    "TchrTrends.`VUnitID`, TchrTrends.Comment,  TidxTexts.ID AS Expr1 FROM "
    "TchrTrends, TidxTexts WHERE (TchrTrends.TextID = TidxTexts.ID) AND "
    "(TchrTrends.ArchiveID = Param1 )";
