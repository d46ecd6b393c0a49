#include "help/BuiltInHelp.h"

#include <QDir>
#include <QFile>
#include <utility>

#include "help/detail/HtmlText.h"
#include "help/detail/PageIndex.h"
#include "help/detail/PageInserts.h"
#include "platform/HelpTopics.h"

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
    {platform::kHelpContents, "index.html"},
    {platform::kHelpArchives, "archives.html"},
    {platform::kHelpArchive, "archive.html"},
    {platform::kHelpEditorWindow, "window.html"},
    {platform::kHelpTrendGrid, "grid.html"},
    {platform::kHelpLanguages, "languages.html"},
    {platform::kHelpStatistic, "window.html#statistic"},
    {platform::kHelpReport, "report.html"},
    {platform::kHelpRefresh, "window.html#refresh"},
    {platform::kHelpKeys, "keys.html"},
    {platform::kHelpProjectTable, "project-table.html"},
    {platform::kHelpReplace, "replace.html"},
    {platform::kHelpPatterns, "patterns.html"},
    {platform::kHelpExchange, "exchange.html"},
    {platform::kHelpCompare, "compare.html"},
    {platform::kHelpFindings, "findings.html"},
    {platform::kHelpOptionsCommon, "options.html#common"},
    {platform::kHelpOptionsTrendTable, "options.html#columns"},
    {platform::kHelpArchiveStandard, "archive-dialog.html#standard"},
    {platform::kHelpArchiveFormat, "archive-dialog.html#format"},
    {platform::kHelpArchiveRecording, "archive-dialog.html#recording"},
    {platform::kHelpTrend, "trend.html"},
    {platform::kHelpTrendStandard, "trend-dialog.html#standard"},
    {platform::kHelpTrendRecording, "trend-dialog.html#recording"},
    {platform::kHelpTrendAppearance, "trend-dialog.html#appearance"},
    {platform::kHelpTrendTolerance, "trend-dialog.html#tolerance"},
    {platform::kHelpArchiveTypes, "archive-types.html"},
    {platform::kHelpSampleModes, "sample-modes.html"},
    {platform::kHelpFileChange, "file-change.html"},
    {platform::kHelpHysteresis, "hysteresis.html"},
    {platform::kHelpFilter, "filter.html"},
    {platform::kHelpToleranceBand, "tolerance.html"},
    {platform::kHelpDrawModes, "draw-modes.html"},
};

struct Chapter {
    int level;
    const char* page;
};
constexpr Chapter kChapters[] = {
    {0, "index.html"},         {0, "tasks.html"},          {1, "task-list.html"},
    {1, "task-unit.html"},     {1, "task-variables.html"}, {1, "task-many.html"},
    {1, "task-handover.html"}, {1, "task-back.html"},      {0, "archives.html"},
    {1, "archive.html"},       {1, "archive-dialog.html"}, {1, "archive-types.html"},
    {1, "sample-modes.html"},  {1, "file-change.html"},    {0, "trend.html"},
    {1, "grid.html"},          {1, "columns.html"},        {1, "patterns.html"},
    {1, "trend-dialog.html"},  {1, "hysteresis.html"},     {1, "filter.html"},
    {1, "tolerance.html"},     {1, "draw-modes.html"},     {0, "studio.html"},
    {1, "backups.html"},       {1, "compare.html"},        {0, "window.html"},
    {1, "commands.html"},      {1, "languages.html"},      {1, "report.html"},
    {1, "project-table.html"}, {1, "replace.html"},        {1, "exchange.html"},
    {1, "findings.html"},      {1, "rules.html"},          {1, "options.html"},
    {1, "keys.html"},          {1, "messages.html"},       {0, "kvs.html"},
    {0, "words.html"},
};

// Where a page lists the words of all pages, its own left out.
constexpr QByteArrayView kIndexMark = "<!-- index -->";
constexpr QLatin1StringView kIndexPage = "words.html"_L1;

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
    return TopicPage(platform::kHelpContents);
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
        const QLatin1StringView page(chapter.page);
        // The index holds every word, and explains none.
        if (page != kIndexPage) pages += folder_ + u'/' + page;
    }
    return pages;
}

QList<IndexEntry> BuiltInHelp::Index() const {
    QList<IndexEntry> entries;
    for (const QString& page : Pages()) {
        const QList<IndexEntry> terms = TermsOf(Read(page).value_or(QByteArray()), page);
        // The first page only names the others: its title is its one word.
        entries += page == HomePage() ? terms.first(1) : terms;
    }
    Sort(entries);
    return entries;
}

std::optional<QByteArray> BuiltInHelp::Read(const QString& path) const {
    const QString clean = QDir::cleanPath(path);
    if (clean.startsWith(u".."_s) || clean.startsWith(u'/')) return std::nullopt;
    QFile file(kRoot + clean);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    QByteArray page = WithInserts(file.readAll(), folder_);
    if (page.contains(kIndexMark)) page.replace(kIndexMark, IndexHtml(Index()).toUtf8());
    return page;
}

}  // namespace help
