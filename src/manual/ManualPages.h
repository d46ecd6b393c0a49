#pragma once

#include <QList>
#include <QString>

#include "help/IHelpSource.h"

/// The help as a manual: its pages in the order of its table of contents, written as HTML and as
/// PDF. What fails is a std::runtime_error that names the file.
namespace manual {

struct Chapter {
    int level = 0;  // from 0
    QString title;
    QString file;  // "trend.html", in the folder of its language
    QString body;  // HTML; what it asks for is found from there: "../images/archive.svg"
};

/// The manual in one language. `pictures` names a folder with the pictures of windows that pages
/// ask for by a mark, NAME-LANGUAGE.png:
///
///     <!-- picture: archive-dialog-format | Archive dialog, page Format -->
///
/// The help itself shows none: the window is there. Here they are "../pictures/NAME-LANGUAGE.png".
struct Manual {
    QString folder;    // "de", "en"
    QString language;  // what it calls itself
    quint32 lcid = 0;
    QString title;
    QList<Chapter> chapters;        // the last one is the index
    QList<help::IndexEntry> index;  // pages without their folder
};
[[nodiscard]] Manual ReadManual(quint32 lcid);

/// A file of the help or a picture, by its path in the manual ("images/...", "pictures/...").
[[nodiscard]] QByteArray ReadFile(const QString& path, const QString& pictures);

/// Replaces what is there; throws when not all of it could be written.
void WriteFile(const QString& path, const QByteArray& bytes);

}  // namespace manual
