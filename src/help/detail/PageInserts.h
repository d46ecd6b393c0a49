#pragma once

#include <QByteArray>
#include <QStringView>

namespace help {

/// A page with what stands in it at its marks, which are comments of the page. Labels, keys, rules
/// and messages so read in the help as in the program, whatever becomes of them.
///
///     <!-- text: 103 -->           a text by its key in the files of texts, bold: a label
///     <!-- texts: NoHit -->        the same as an item of a list: a message
///     <!-- texts: Reason.* -->     all texts whose keys begin so, as items
///     <!-- keys: trends -->        rows of a table: keys and what they do (tree, archives, trends,
///                                  cells)
///     <!-- command: mnuFind -->    a command by the name of its action: its text and its keys
///     <!-- rule: NameEmpty -->     row of a table: a rule's id, what it means, what to do
///
/// `folder` is that of the pages' language. A mark that nothing is known for stays.
[[nodiscard]] QByteArray WithInserts(const QByteArray& page, QStringView folder);

}  // namespace help
