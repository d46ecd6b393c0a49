#include "help/ChmHelp.h"

#include <algorithm>

#include "help/detail/ChmTables.h"
#include "help/detail/HtmlText.h"

namespace help {

using namespace Qt::Literals::StringLiterals;

namespace {

bool IsPage(const QString& path) {
    return path.endsWith(u".htm"_s) || path.endsWith(u".html"_s) || path.endsWith(u".xhtml"_s);
}

QString WithoutPlace(const QString& page) {
    return page.section(u'#', 0, 0);
}

}  // namespace

ChmHelp::ChmHelp(Files files, const QString& name) : files_(std::move(files)) {
    const ChmSystem system = ReadSystem(files_.value(u"#system"_s));
    topics_ = ReadTopics(files_.value(u"#ivb"_s), files_.value(u"#strings"_s));
    QString sitemap = system.contentsFile.toLower();
    const QStringList pages = Pages();
    if (!files_.contains(sitemap)) {
        for (const QString& path : files_.keys()) {
            if (path.endsWith(u".hhc"_s)) sitemap = path;
        }
    }
    for (const ContentsEntry& entry : ReadSitemap(files_.value(sitemap))) {
        const bool there = files_.contains(WithoutPlace(entry.page).toLower());
        contents_ += ContentsEntry{entry.level, entry.title, there ? entry.page : QString()};
    }
    if (contents_.isEmpty()) {
        for (const QString& page : pages) {
            const QString title = HtmlTitle(files_.value(page));
            contents_ += ContentsEntry{0, title.isEmpty() ? page : title, page};
        }
    }
    homePage_ = system.homePage;
    if (!files_.contains(WithoutPlace(homePage_).toLower())) {
        const auto first = std::find_if(contents_.begin(), contents_.end(),
                                        [](const auto& entry) { return !entry.page.isEmpty(); });
        homePage_ = first != contents_.end() ? first->page : pages.value(0);
    }
    title_ = system.title.isEmpty() ? name : system.title;
}

QString ChmHelp::TopicPage(int topic) const {
    // Number 0 asks for the table of contents, which a file may have a page for.
    const QString page = topics_.value(static_cast<quint32>(topic));
    if (!page.isEmpty() && files_.contains(WithoutPlace(page).toLower())) return page;
    return topic == 0 ? homePage_ : QString();
}

QStringList ChmHelp::Pages() const {
    QStringList pages;
    for (auto file = files_.keyBegin(); file != files_.keyEnd(); ++file) {
        if (IsPage(*file)) pages += *file;
    }
    pages.sort();
    return pages;
}

std::optional<QByteArray> ChmHelp::Read(const QString& path) const {
    const auto file = files_.find(CleanPagePath(path).toLower());
    if (file == files_.end()) return std::nullopt;
    return *file;
}

}  // namespace help
