#include "help/PageSearch.h"

#include <algorithm>
#include <QStringList>
#include <utility>

#include "help/detail/HtmlText.h"

namespace help {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype kMaximumText = 1 << 20;  // characters of one page that are looked through

bool ContainsAll(const QString& text, const QStringList& wanted) {
    return std::ranges::all_of(
        wanted, [&](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}

}  // namespace

void PageSearch::SetSource(const IHelpSource* source) {
    source_ = source;
    index_.clear();
    texts_.clear();
    isIndexRead_ = false;
}

QList<PageSearch::Match> PageSearch::Find(const QString& words) {
    const QStringList wanted = words.simplified().split(u' ', Qt::SkipEmptyParts);
    if (source_ == nullptr || wanted.isEmpty()) return {};
    QList<Match> matches = FindInIndex(wanted);
    for (const QString& page : source_->Pages()) {
        const QString& text = TextOf(page);
        if (!ContainsAll(text, wanted)) continue;
        const auto isShown = [&](const Match& match) { return match.page == page; };
        if (std::ranges::any_of(matches, isShown)) continue;
        matches += {text.section(u'\n', 0, 0), page};
    }
    return matches;
}

QList<PageSearch::Match> PageSearch::FindInIndex(const QStringList& wanted) {
    if (!std::exchange(isIndexRead_, true)) index_ = source_->Index();
    QList<Match> titles;
    QList<Match> beginning;
    QList<Match> others;
    for (const IndexEntry& entry : std::as_const(index_)) {
        if (!ContainsAll(entry.term, wanted)) continue;
        const bool isTitle = entry.term == entry.title;
        const bool begins = entry.term.startsWith(wanted.front(), Qt::CaseInsensitive);
        QList<Match>& matches = !begins ? others : isTitle ? titles : beginning;
        matches += {isTitle ? entry.title : entry.term + u" – "_s + entry.title, entry.page};
    }
    return titles + beginning + others;
}

const QString& PageSearch::TextOf(const QString& page) {
    auto text = texts_.find(page);
    if (text == texts_.end()) {
        const QByteArray bytes = source_->Read(page).value_or(QByteArray());
        const QString title = HtmlTitle(bytes);
        text = texts_.insert(page, (title.isEmpty() ? page : title) + u'\n' +
                                       HtmlToText(DecodeHtml(bytes)).left(kMaximumText));
    }
    return *text;
}

}  // namespace help
