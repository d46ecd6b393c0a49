#include "dialogs/ArchiveSummary.h"

#include <gtest/gtest.h>

#include "dialogs/DialogTesting.h"

namespace {

using enum ArchiveSettings::Kind;

struct Case {
    ArchiveSettings settings;
    const char16_t* german;
    const char16_t* english;
};

// kind, disk, file change, trigger, samples, files, kB, sample mode, scan time
const Case kCases[] = {
    {{ContinuationFile, true, 5, {}, 0, 31, 102400, 1, 1000},
     u"1 Datei je Tag, 31 Dateien, höchstens 100 MB",
     u"1 file a day, 31 files, at most 100 MB"},
    {{ContinuationFile, true, 6, {}, 0, 1, 1500, 1, 1000},
     u"1 Datei je Stunde, 1 Datei, höchstens 1.5 MB",
     u"1 file an hour, 1 file, at most 1.5 MB"},
    {{ContinuationFile, true, 0, QStringLiteral("Sud.Neu"), 0, 0, 3145728, 3, 0},
     u"neue Datei auf Sud.Neu, höchstens 3 GB",
     u"a new file on Sud.Neu, at most 3 GB"},
    {{ContinuationFile, true, 0, {}, 0, 0, 0, 3, 0},
     u"neue Datei auf eine Triggervariable",
     u"a new file on a trigger variable"},
    {{ContinuationFile, true, 1, {}, 3600, 24, 0, 1, 1000},
     u"neue Datei nach 3,600 Datensätzen, 24 Dateien, reicht 1 Tag zurück",
     u"a new file after 3,600 records, 24 files, reaches back 1 day"},
    {{ContinuationFile, true, 9, {}, 0, 31, 512, 1, 1000},
     u"eine einzige Datei, höchstens 512 kB",
     u"a single file, at most 512 kB"},
    {{ContinuationFile, false, 5, {}, 0, 31, 102400, 1, 1000},
     u"im Hauptspeicher",
     u"in main memory"},
    {{CircularBuffer, true, 1, {}, 36000, 0, 0, 1, 100},
     u"36,000 Datensätze, reicht 1 Stunde zurück",
     u"36,000 records, reaches back 1 hour"},
    {{CircularBuffer, false, 1, {}, 7200, 0, 0, 0, 10},
     u"7,200 Datensätze, reicht 72,000 Prozesszyklen zurück, im Hauptspeicher",
     u"7,200 records, reaches back 72,000 process cycles, in main memory"},
    {{CircularBuffer, true, 1, {}, 100, 0, 0, 1, 5},
     u"100 Datensätze, reicht 500 ms zurück",
     u"100 records, reaches back 500 ms"},
    {{CircularBuffer, true, 1, {}, 1000000, 0, 0, 1, 216000},
     u"1,000,000 Datensätze, reicht 6.8 Jahre zurück",
     u"1,000,000 records, reaches back 6.8 years"},
    // Records that come with events reach back nobody knows how long.
    {{CircularBuffer, true, 1, {}, 500, 0, 0, 2, 1000}, u"500 Datensätze", u"500 records"},
    {{Unknown, true, 5, {}, 0, 31, 102400, 1, 1000}, u"", u""},
};

TEST(ArchiveSummaryTest, TellsWhatTheSettingsMeanInBothLanguages) {
    const DialogSurroundings german(MResources::kGerman);
    const DialogSurroundings english(MResources::kEnglish);
    for (const Case& row : kCases) {
        EXPECT_EQ(ArchiveSummary(row.settings, german.texts), QString::fromUtf16(row.german));
        EXPECT_EQ(ArchiveSummary(row.settings, english.texts), QString::fromUtf16(row.english));
    }
}

}  // namespace
