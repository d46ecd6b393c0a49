#include "dialogs/ArchiveSummary.h"

#include <array>
#include <cmath>
#include <QLocale>
#include <QStringList>

#include "project/Schema.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

using namespace MResourceTable;

// A unit is shown from one of it on.
struct Unit {
    double size;
    int one;
    int more;
};
constexpr double kSecondMs = 1000;
constexpr std::array<Unit, 5> kTimes = {{{365 * 86400 * kSecondMs, kTextOneYear, kTextYears},
                                         {86400 * kSecondMs, kTextOneDay, kTextDays},
                                         {3600 * kSecondMs, kTextOneHour, kTextHours},
                                         {60 * kSecondMs, kTextOneMinute, kTextMinutes},
                                         {kSecondMs, kTextOneSecond, kTextSeconds}}};
// From the change of the year on, in the order of FileChange.
constexpr std::array kEachFile = {kTextFileEachYear,  kTextFileEachMonth, kTextFileEachWeek,
                                  kTextFileEachDay,   kTextFileEachHour,  kTextFileEachMinute,
                                  kTextFileEachSecond};

class Line {
public:
    explicit Line(const MResources::TextTable& texts) : texts_(texts) {}

    [[nodiscard]] QString Text(int id) const { return texts_.GetText(id); }
    [[nodiscard]] QString Text(int id, QStringView placeholder, const QString& value) const {
        return texts_.GetText(id, {{placeholder, value}});
    }
    [[nodiscard]] QString Number(int id, double number) const {
        return Text(id, u"n", Shown(number));
    }

    /// "1 day", "2.5 days".
    [[nodiscard]] QString Duration(double milliseconds) const {
        for (const Unit& unit : kTimes) {
            if (milliseconds < unit.size) continue;
            const QString count = Shown(milliseconds / unit.size);
            return Text(count == u'1' ? unit.one : unit.more, u"n", count);
        }
        return Number(kTextMilliseconds, milliseconds);
    }

    [[nodiscard]] QString Size(double kilobytes) const {
        constexpr double kStep = 1024;
        if (kilobytes < kStep) return Number(kTextKilobytes, kilobytes);
        if (kilobytes < kStep * kStep) return Number(kTextMegabytes, kilobytes / kStep);
        return Number(kTextGigabytes, kilobytes / kStep / kStep);
    }

    [[nodiscard]] QString Files(double count) const {
        return count == 1 ? Text(kTextOneFile) : Number(kTextFiles, count);
    }

private:
    /// Few digits: a whole number from ten on, else one decimal place where it has one.
    [[nodiscard]] static QString Shown(double number) {
        constexpr double kTen = 10;
        const double rounded =
            std::abs(number) < kTen ? std::round(number * kTen) / kTen : std::round(number);
        return QLocale().toString(rounded, 'f', rounded == std::floor(rounded) ? 0 : 1);
    }

    const MResources::TextTable& texts_;
};

/// How long that many records reach back; empty where they do not come at fixed times.
QString Reach(const Line& line, const ArchiveSettings& settings, double records) {
    const double span = records * settings.scanTime;
    if (!(span > 0)) return {};
    if (settings.sampleMode == project::SampleMode::kMilliseconds) {
        return line.Text(kTextReachesBack, u"time", line.Duration(span));
    }
    if (settings.sampleMode == project::SampleMode::kCycles) {
        return line.Text(kTextReachesBack, u"time", line.Number(kTextProcessCycles, span));
    }
    return {};
}

/// A long name leaves room for the rest of the line.
QString Shortened(const QString& name) {
    constexpr qsizetype kLongest = 40;
    return name.size() <= kLongest ? name : name.left(kLongest - 1) + QChar(0x2026);
}

QString FileEvent(const Line& line, const ArchiveSettings& settings) {
    switch (settings.fileChange) {
        case -1:
            return {};
        case FileChange::kTrigger:
            return settings.fileTrigger.isEmpty() ? line.Text(kTextNewFileOnTrigger)
                                                  : line.Text(kTextNewFileOnVariable, u"variable",
                                                              Shortened(settings.fileTrigger));
        case FileChange::kCount:
            return line.Number(kTextNewFileAfterRecords, settings.maxSamples);
        case FileChange::kNever:
            return line.Text(kTextSingleFile);
        default:
            return line.Text(
                kEachFile.at(static_cast<std::size_t>(settings.fileChange - FileChange::kYear)));
    }
}

}  // namespace

QString ArchiveSummary(const ArchiveSettings& settings, const MResources::TextTable& texts) {
    using enum ArchiveSettings::Kind;
    const Line line(texts);
    QStringList parts;
    if (settings.kind == Unknown) return {};
    if (settings.kind == CircularBuffer) {
        parts << line.Number(kTextRecords, settings.maxSamples)
              << Reach(line, settings, settings.maxSamples);
    } else if (settings.onHardDisk) {
        parts << FileEvent(line, settings);
        const bool changes = settings.fileChange != FileChange::kNever;
        if (changes && settings.maxFiles > 0) parts << line.Files(settings.maxFiles);
        if (settings.maxSizeKb > 0)
            parts << line.Text(kTextAtMost, u"size", line.Size(settings.maxSizeKb));
        if (settings.fileChange == FileChange::kCount) {
            parts << Reach(line, settings, settings.maxSamples * settings.maxFiles);
        }
    }
    if (!settings.onHardDisk) parts << line.Text(kTextInMainMemory);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}
