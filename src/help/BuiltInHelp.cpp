#include "help/BuiltInHelp.h"

#include <QDir>
#include <QFile>

#include "help/detail/HtmlText.h"
#include "help/HelpTopics.h"

// Outside of any namespace, as Qt wants it: a static library's resources are not found by
// themselves.
static void InitResources() {
    Q_INIT_RESOURCE(kvhelp);
}

namespace help {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString kRoot = u":/kvhelp/"_s;

struct Topic {
    int number;
    const char* page;
};
constexpr Topic kTopics[] = {
    {kHelpContents, "index.html"},
    {kHelpArchives, "archives.html"},
    {kHelpArchive, "archive.html"},
    {kHelpEditorWindow, "window.html"},
    {kHelpTrendGrid, "grid.html"},
    {kHelpLanguages, "languages.html"},
    {kHelpStatistic, "window.html#statistic"},
    {kHelpReport, "report.html"},
    {kHelpRefresh, "window.html#refresh"},
    {kHelpKeys, "keys.html"},
    {kHelpOptionsCommon, "options.html#common"},
    {kHelpOptionsTrendTable, "options.html#columns"},
    {kHelpArchiveStandard, "archive-dialog.html#standard"},
    {kHelpArchiveFormat, "archive-dialog.html#format"},
    {kHelpArchiveRecording, "archive-dialog.html#recording"},
    {kHelpTrend, "trend.html"},
    {kHelpTrendStandard, "trend-dialog.html#standard"},
    {kHelpTrendRecording, "trend-dialog.html#recording"},
    {kHelpTrendAppearance, "trend-dialog.html#appearance"},
    {kHelpTrendTolerance, "trend-dialog.html#tolerance"},
    {kHelpArchiveTypes, "archive-types.html"},
    {kHelpSampleModes, "sample-modes.html"},
    {kHelpFileChange, "file-change.html"},
    {kHelpHysteresis, "hysteresis.html"},
    {kHelpFilter, "filter.html"},
    {kHelpToleranceBand, "tolerance.html"},
    {kHelpDrawModes, "draw-modes.html"},
};

struct Chapter {
    int level;
    const char* page;
};
constexpr Chapter kChapters[] = {
    {0, "index.html"},          {0, "archives.html"},      {1, "archive.html"},
    {1, "archive-dialog.html"}, {1, "archive-types.html"}, {1, "sample-modes.html"},
    {1, "file-change.html"},    {0, "trend.html"},         {1, "grid.html"},
    {1, "trend-dialog.html"},   {1, "hysteresis.html"},    {1, "filter.html"},
    {1, "tolerance.html"},      {1, "draw-modes.html"},    {0, "window.html"},
    {1, "languages.html"},      {1, "report.html"},        {1, "options.html"},
    {1, "keys.html"},
};

}  // namespace

BuiltInHelp::BuiltInHelp(QString folder) : folder_(std::move(folder)) {
    InitResources();
}

QList<int> BuiltInHelp::Topics() {
    QList<int> numbers;
    for (const Topic& topic : kTopics) numbers += topic.number;
    return numbers;
}

QString BuiltInHelp::Title() const {
    return HtmlTitle(Read(HomePage()).value_or(QByteArray()));
}

QString BuiltInHelp::HomePage() const {
    return TopicPage(kHelpContents);
}

QString BuiltInHelp::TopicPage(int topic) const {
    for (const Topic& known : kTopics) {
        if (known.number == topic) return folder_ + u'/' + QLatin1StringView(known.page);
    }
    return {};
}

QList<ContentsEntry> BuiltInHelp::Contents() const {
    QList<ContentsEntry> entries;
    for (const Chapter& chapter : kChapters) {
        const QString page = folder_ + u'/' + QLatin1StringView(chapter.page);
        entries += ContentsEntry{chapter.level, HtmlTitle(Read(page).value_or(QByteArray())), page};
    }
    return entries;
}

QStringList BuiltInHelp::Pages() const {
    QStringList pages;
    for (const Chapter& chapter : kChapters) {
        pages += folder_ + u'/' + QLatin1StringView(chapter.page);
    }
    return pages;
}

std::optional<QByteArray> BuiltInHelp::Read(const QString& path) const {
    const QString clean = QDir::cleanPath(path);
    if (clean.startsWith(u".."_s) || clean.startsWith(u'/')) return std::nullopt;
    QFile file(kRoot + clean);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return file.readAll();
}

}  // namespace help
