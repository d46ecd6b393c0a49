#include "report/HtmlStyle.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

// Of a document there is little more than colours to set: it takes its font from the window.
constexpr QStringView kDocumentStyle =
    u"table.grid { border-collapse: collapse; border-style: solid; border-color: %1; }\n"
    u"th { background-color: %2; text-align: left; }\n"
    u"td.name { background-color: %2; }\n"
    u".muted { color: %3; }\n"
    u".warning { color: %4; font-weight: bold; }\n"
    u".strong { font-weight: bold; }\n"
    u"a { color: %5; }\n"
    u"h1 { margin-bottom: 2px; } h2 { margin-bottom: 4px; } h3 { margin-bottom: 4px; }\n";

constexpr QStringView kFileStyle =
    u"body { font: 14px/1.4 sans-serif; margin: 2em; color: #1c1c1c; background: #fff; }\n"
    u"table.grid { border-collapse: collapse; width: 100%; margin: .5em 0 1.5em; }\n"
    u"table.grid th, table.grid td { border: 1px solid #bbb; padding: .25em .5em;\n"
    u"    text-align: left; vertical-align: top; }\n"
    u"thead { display: table-header-group; }\n"
    u"th, td.name { background: #eef1f4; }\n"
    u"td.name { width: 14em; }\n"
    u"tr { break-inside: avoid; }\n"
    u".muted { color: #666; } .warning { color: #b00020; font-weight: bold; }\n"
    u".strong { font-weight: bold; }\n"
    u"svg.curve { vertical-align: middle; margin-right: .4em; }\n"
    u"a { color: #0a58a6; }\n"
    u"@media print { body { margin: 0; font-size: 9pt; } .archive { break-before: page; } }\n"
    u"@media screen and (prefers-color-scheme: dark) {\n"
    u"  body { color: #ddd; background: #1d1f21; } th, td.name { background: #2b2f33; }\n"
    u"  table.grid th, table.grid td { border-color: #555; } .muted { color: #999; }\n"
    u"  .warning { color: #ff7b7b; } a { color: #7db7f0; }\n"
    u"}\n";

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < 128;
}

}  // namespace

QString DocumentStyle(const QPalette& palette) {
    const bool dark = IsDark(palette);
    return kDocumentStyle.toString().arg(
        dark ? u"#606060"_s : u"#b8b8b8"_s, dark ? u"#32373c"_s : u"#eef1f4"_s,
        dark ? u"#a0a0a0"_s : u"#606060"_s, dark ? u"#ff8080"_s : u"#b00020"_s,
        dark ? u"#7db7f0"_s : u"#0a58a6"_s);
}

QString FileStyle() {
    return kFileStyle.toString();
}

}  // namespace report
