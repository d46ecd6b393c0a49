#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include "help/IHelpSource.h"

namespace help {

// The tables inside a compiled help file. Numbers are little-endian. Nothing in them is trusted:
// what does not fit is left out.

/// The pages of context numbers.
///
/// `ivb` is the stream "#IVB":  +0  u32  length of what follows
///                              +4  then for each number  u32 number, u32 offset in `strings`
/// `strings` is the stream "#STRINGS": texts in the system code page, each ending with a 0.
[[nodiscard]] QHash<quint32, QString> ReadTopics(const QByteArray& ivb, const QByteArray& strings);

/// What the stream "#SYSTEM" tells: u32 version, then entries u16 code, u16 length, bytes.
struct ChmSystem {
    QString contentsFile;  // code 0
    QString homePage;      // code 2
    QString title;         // code 3
};
[[nodiscard]] ChmSystem ReadSystem(const QByteArray& system);

/// The table of contents: nested lists of objects with the parameters "Name" and "Local".
[[nodiscard]] QList<ContentsEntry> ReadSitemap(const QByteArray& sitemap);

/// A page as those tables and links name it, as a path inside the file: without a protocol or the
/// file's own name in front, with "/" only, without "..". Empty when it leads outside.
[[nodiscard]] QString CleanPagePath(QString path);

}  // namespace help
