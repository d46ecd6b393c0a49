#pragma once

#include <QByteArray>
#include <QString>

namespace help {

// What the viewer needs to know of a page. Pages may be anything: nothing here fails, and nothing
// takes longer than the page is long.

/// The page as text, in the encoding that it names; UTF-8 or the system code page.
[[nodiscard]] QString DecodeHtml(const QByteArray& page);
/// What stands between <title> and </title>; empty when nothing does.
[[nodiscard]] QString HtmlTitle(const QByteArray& page);
/// The words of a page, without mark-up, scripts and styles, with single blanks between them.
[[nodiscard]] QString HtmlToText(QStringView html);
/// "&amp;" and the like as the characters that they stand for.
[[nodiscard]] QString DecodeEntities(QStringView text);

/// A page that can be laid out without harm: elements nested deeper than any page of a help has,
/// and cells that span more columns than fit on a screen, exhaust stack and memory in there. Such
/// a page becomes its mere words.
[[nodiscard]] QString HarmlessHtml(const QString& html);

}  // namespace help
