#include "dialogs/ArchiveSummary.h"

#include <array>
#include <cmath>
#include <QLocale>
#include <QStringList>

#include "languages/MResources.h"
#include "languages/MResourceTable.h"
#include "project/Schema.h"

namespace {

using namespace MResourceTable;

// A unit is shown from one of it on; `text` is that for exactly one, the next number that for more.
struct Unit {
    double size;
    int text;
};
constexpr double kSecondMs = 1000;
constexpr std::array<Unit, 5> kTimes = {{{365 * 86400 * kSecondMs, kTextYears},
                                         {86400 * kSecondMs, kTextDays},
                                         {3600 * kSecondMs, kTextHours},
                                         {60 * kSecondMs, kTextMinutes},
                                         {kSecondMs, kTextSeconds}}};

class Line {
public:
    explicit Line(const MResources::TextTable& texts) : texts_(texts) {}

    [[nodiscard]] QString Text(int id) const { return texts_.GetText(id); }
    [[nodiscard]] QString Text(int id, const QString& value) const {
        QString text = texts_.GetText(id);
        const qsizetype at = text.indexOf(u'<');
        const qsizetype end = text.indexOf(u'>', at);
        return at < 0 || end < 0 ? text : text.replace(at, end - at + 1, value);
    }
    [[nodiscard]] QString Number(int id, double number) const { return Text(id, Shown(number)); }

    /// "1 day", "2.5 days".
    [[nodiscard]] QString Duration(double milliseconds) const {
        for (const Unit& unit : kTimes) {
            if (milliseconds < unit.size) continue;
            const QString count = Shown(milliseconds / unit.size);
            return Text(count == u'1' ? unit.text : unit.text + 1, count);
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
        return line.Text(kTextReachesBack, line.Duration(span));
    }
    if (settings.sampleMode == project::SampleMode::kCycles) {
        return line.Text(kTextReachesBack, line.Number(kTextProcessCycles, span));
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
            return settings.fileTrigger.isEmpty()
                       ? line.Text(kTextNewFileOnTrigger)
                       : line.Text(kTextNewFileOnVariable, Shortened(settings.fileTrigger));
        case FileChange::kCount:
            return line.Number(kTextNewFileAfterRecords, settings.maxSamples);
        case FileChange::kNever:
            return line.Text(kTextSingleFile);
        default:
            return line.Text(kTextFileEachYear + settings.fileChange - FileChange::kYear);
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
        if (settings.maxSizeKb > 0) parts << line.Text(kTextAtMost, line.Size(settings.maxSizeKb));
        if (settings.fileChange == FileChange::kCount) {
            parts << Reach(line, settings, settings.maxSamples * settings.maxFiles);
        }
    }
    if (!settings.onHardDisk) parts << line.Text(kTextInMainMemory);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}
