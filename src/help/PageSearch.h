#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include "help/IHelpSource.h"

namespace help {

/// Looks through the pages of one help: the words of its index first, then the text of its pages,
/// which is read once. All words that are looked for have to occur, in any order and any case.
class PageSearch {
public:
    struct Match {
        QString title;  // what is shown of it
        QString page;   // may carry "#" and a place
    };

    /// Borrowed; null: nothing is found.
    void SetSource(const IHelpSource* source);

    /// Pages whose titles begin so come first, then index words that do; nothing for blanks alone.
    [[nodiscard]] QList<Match> Find(const QString& words);

private:
    [[nodiscard]] QList<Match> FindInIndex(const QStringList& wanted);
    /// The page's title, a line's end, its text.
    [[nodiscard]] const QString& TextOf(const QString& page);

    const IHelpSource* source_ = nullptr;
    QList<IndexEntry> index_;
    QHash<QString, QString> texts_;
    bool isIndexRead_ = false;
};

}  // namespace help
