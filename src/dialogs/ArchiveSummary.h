#pragma once

#include <cstdint>
#include <QString>

namespace MResources {
class TextTable;
}

/// The entries of the file-change list, in its order.
namespace FileChange {
inline constexpr int kTrigger = 0;
inline constexpr int kCount = 1;
inline constexpr int kYear = 2;  // the events of the clock follow each other down to kSecond
inline constexpr int kSecond = 8;
inline constexpr int kNever = 9;
}  // namespace FileChange

/// What an archive's settings mean, as the dialog shows them at the moment.
struct ArchiveSettings {
    enum class Kind { Unknown, CircularBuffer, ContinuationFile };

    Kind kind = Kind::Unknown;
    bool onHardDisk = true;
    int fileChange = -1;  // FileChange; -1: none is selected
    QString fileTrigger;  // variable that starts a new file
    double maxSamples = 0;
    double maxFiles = 0;   // 0: no limit
    double maxSizeKb = 0;  // kilobytes; 0: no limit
    int sampleMode = -1;   // stored code; -1: none is selected
    double scanTime = 0;
};

/// One line for the user: "1 file a day, 31 files, at most 100 MB"; for records that come at fixed
/// times also how long they reach back. Empty where there is nothing to tell.
[[nodiscard]] QString ArchiveSummary(const ArchiveSettings& settings,
                                     const MResources::TextTable& texts);
