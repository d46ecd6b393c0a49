// The tables of a compiled help file, and its pages on their way to the screen: anything may be in
// them, and nothing of it may read outside, hang, or grow beyond what it was made of.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <QByteArray>

#include "help/ChmHelp.h"
#include "help/detail/ChmTables.h"
#include "help/detail/HtmlText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    // The first byte says where the two tables of topics part.
    const qsizetype middle = 1 + bytes.size() * static_cast<unsigned char>(bytes[0]) / 256;
    help::ChmHelp::Files files;
    files.insert(QStringLiteral("#ivb"), bytes.mid(1, middle));
    files.insert(QStringLiteral("#strings"), bytes.mid(middle));
    files.insert(QStringLiteral("#system"), bytes.mid(1));
    files.insert(QStringLiteral("toc.hhc"), bytes.mid(1));
    files.insert(QStringLiteral("page.htm"), bytes.mid(1));
    const help::ChmHelp chm(files, QStringLiteral("x"));
    for (const int topic : {0, 1, 30002}) {
        if (chm.TopicPage(topic).startsWith(QStringLiteral("../"))) std::abort();
    }
    for (const help::ContentsEntry& entry : chm.Contents()) {
        if (entry.page.startsWith(QStringLiteral("../")) || entry.level < 0) std::abort();
    }
    const QString html = help::DecodeHtml(bytes);
    // An escaped "<" is four characters.
    if (help::HarmlessHtml(html).size() > 6 * html.size() + 64) std::abort();
    if (help::HtmlToText(html).size() > 2 * html.size()) std::abort();
    return 0;
}
