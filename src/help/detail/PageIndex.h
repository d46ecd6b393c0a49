#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "help/IHelpSource.h"

namespace help {

/// The words under which a page of ours is looked up: its title, its headings, the labels that
/// begin a row of a table, and what the page names itself:
///
///     <meta name="keywords" content="way back; restore"/>
///
/// Each leads to the nearest place in front of it. Keys, numbers and signs are no words.
[[nodiscard]] QList<IndexEntry> TermsOf(const QByteArray& page, const QString& path);

/// Puts the words of all pages in order, each place once. Capitals and marks above letters count
/// for nothing.
void Sort(QList<IndexEntry>& entries);

/// The letter that a word stands under in an index.
[[nodiscard]] QChar LetterOf(const QString& term);

/// A sorted index as the body of a page: a heading for each letter, a line for each word with
/// links to its pages, by their titles. Links are from a page in the folder of the pages.
[[nodiscard]] QString IndexHtml(const QList<IndexEntry>& entries);

}  // namespace help
