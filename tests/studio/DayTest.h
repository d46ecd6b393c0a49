#pragma once

#include "studio/StudioDesk.h"

/// A day's work with the whole system, by keys and mouse, from a new project to the report. Each
/// chapter goes on where the one before it has ended. The morning is German, the afternoon, after a
/// new start, English.
class DayTest : public StudioDesk {
public:
    /// Nothing when one before it has failed.
    void Run(const char* name, void (DayTest::*chapter)());

    // --- the morning
    void MakeAProject();
    void OtherToolsFillIn();
    void MakeTenArchives();
    void AddTrendsByKey();
    void PasteTrendsFromASpreadsheet();
    void CopyTrendsAcross();
    void SetTrendsUp();
    void SortAndNarrow();
    void ArrangeTheGrid();
    // --- the afternoon
    void GoOnInEnglish();
    void FillInTheSecondLanguage();
    void Rename();
    void Copy();
    void Delete();
    void ChooseOptions();
    void LookAtHelpAndReport();
    void TakeInWhatOthersDid();
    void FindEverythingAsItWas();
};
