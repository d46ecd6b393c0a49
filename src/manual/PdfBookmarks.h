#pragma once

#include <QList>
#include <QString>

namespace manual {

struct Bookmark {
    int level = 0;  // 0, or 1: below the one of level 0 before it
    QString title;
    int page = 0;  // from 0
};

/// Adds bookmarks to a PDF file as QPdfWriter writes it, which has none itself. They are appended
/// as an update of the file; what stands there stays. A file of another form, or one that cannot be
/// written, is a std::runtime_error.
void AddBookmarks(const QString& file, const QList<Bookmark>& bookmarks);

}  // namespace manual
