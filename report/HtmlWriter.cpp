#include "report/HtmlWriter.h"

#include <algorithm>
#include <QHash>
#include <QStringList>

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto kAddressPrefix = "section:"_L1;

// A document has its table's looks from the attributes, a file from its style sheet.
constexpr QStringView kTableBegin =
    u"<table class=\"grid\" border=\"1\" cellspacing=\"0\" cellpadding=\"4\" width=\"100%\">";

// Of a document there is little more than colours to set: it takes its font from the window.
constexpr QStringView kDocumentStyle =
    u"table.grid { border-collapse: collapse; border-style: solid; border-color: %1; }\n"
    u"th { background-color: %2; text-align: left; }\n"
    u"td.name { background-color: %2; }\n"
    u".muted { color: %3; }\n"
    u".warning { color: %4; font-weight: bold; }\n"
    u".strong { font-weight: bold; }\n"
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

QString LookClass(Line::Look look) {
    switch (look) {
        case Line::Look::Strong:
            return u"strong"_s;
        case Line::Look::Muted:
            return u"muted"_s;
        case Line::Look::Warning:
            return u"warning"_s;
        case Line::Look::Plain:
            break;
    }
    return {};
}

QString Element(const QString& name, const QString& text) {
    return u'<' + name + u'>' + text.toHtmlEscaped() + u"</"_s + name + u'>';
}

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < 128;
}

QString DocumentStyle(const QPalette& palette) {
    const bool dark = IsDark(palette);
    return kDocumentStyle.toString().arg(
        dark ? u"#606060"_s : u"#b8b8b8"_s, dark ? u"#32373c"_s : u"#eef1f4"_s,
        dark ? u"#a0a0a0"_s : u"#606060"_s, dark ? u"#ff8080"_s : u"#b00020"_s);
}

}  // namespace

QString Section::Address() const {
    return kAddressPrefix + Anchor().mid(1);
}

QString Section::Anchor() const {
    return u"s%1-%2-%3"_s.arg(static_cast<int>(kind)).arg(archive).arg(first);
}

Section Section::FromAddress(const QString& address) {
    if (!address.startsWith(kAddressPrefix)) return {};
    const QStringList parts = address.mid(kAddressPrefix.size()).split(u'-');
    if (parts.size() != 3) return {};
    const int kind = std::clamp(parts[0].toInt(), 0, static_cast<int>(Kind::Problems));
    return {static_cast<Kind>(kind), parts[1].toULong(), parts[2].toULong()};
}

HtmlWriter::HtmlWriter(ProjectReader& reader, const ReportTexts& texts, QString projectPath,
                       Target target)
    : reader_(reader),
      texts_(texts),
      wording_(texts),
      projectPath_(std::move(projectPath)),
      target_(target) {}

std::vector<Section> HtmlWriter::Sections() const {
    std::vector<Section> sections;
    const auto add = [&](Section section) {
        for (sections.push_back(section); !IsLast(section); sections.push_back(section)) {
            section.first += PerSection(section);
        }
    };
    add({});
    for (std::size_t i = 0; i < reader_.Archives().size(); ++i) {
        add({Section::Kind::Archive, i});
    }
    if (!reader_.WithoutArchive().trends.empty()) add({Section::Kind::WithoutArchive});
    if (reader_.ProblemCount() != 0) add({Section::Kind::Problems});
    return sections;
}

/// Rows of the table that a section shows a part of.
std::size_t HtmlWriter::RowCount(const Section& section) const {
    switch (section.kind) {
        case Section::Kind::Overview:
            return reader_.Archives().size();
        case Section::Kind::Problems:
            return 0;  // there are few of them
        case Section::Kind::Archive:
        case Section::Kind::WithoutArchive:
            break;
    }
    return TrendsOf(section).trends.size();
}

std::size_t HtmlWriter::PerSection(const Section& section) {
    return section.kind == Section::Kind::Overview ? kArchivesPerSection : kTrendsPerSection;
}

bool HtmlWriter::IsLast(const Section& section) const {
    return section.first + PerSection(section) >= RowCount(section);
}

const ProjectReader::Archive& HtmlWriter::TrendsOf(const Section& section) const {
    return section.kind == Section::Kind::Archive ? reader_.Archives().at(section.archive)
                                                  : reader_.WithoutArchive();
}

QString HtmlWriter::Title(const Section& section) const {
    switch (section.kind) {
        case Section::Kind::Overview:
            return texts_(Text::Overview);
        case Section::Kind::Archive:
            return TrendsOf(section).name;
        case Section::Kind::WithoutArchive:
            return texts_(Text::TrendsWithoutArchive);
        case Section::Kind::Problems:
            return texts_(Text::Problems);
    }
    return {};
}

QString HtmlWriter::Page(const Section& section, const QPalette& palette,
                         const std::vector<int>& pages) {
    return u"<html><head><style>"_s + DocumentStyle(palette) + u"</style></head><body>"_s +
           Body(section, pages) + u"</body></html>"_s;
}

QString HtmlWriter::Body(const Section& section, const std::vector<int>& pages) {
    switch (section.kind) {
        case Section::Kind::Overview:
            return (section.first == 0 ? Facts() : QString()) + Contents(section, pages);
        case Section::Kind::Problems:
            return Element(u"h2"_s, Title(section)) + ProblemTable();
        case Section::Kind::Archive:
        case Section::Kind::WithoutArchive:
            break;
    }
    return (section.first == 0 ? Settings(section) : QString()) + TrendTable(section);
}

QString HtmlWriter::FileHead() const {
    return u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE html>\n"_s
           u"<html xmlns=\"http://www.w3.org/1999/xhtml\" xml:lang=\"%1\">\n<head>\n"_s
           u"<meta charset=\"utf-8\"/>\n"_s.arg(texts_.Locale().name().left(2)) +
           Element(u"title"_s, texts_(Text::WindowTitle, {{u"project", projectPath_}})) +
           u"\n<style>\n"_s + kFileStyle.toString() + u"</style>\n</head>\n<body>\n"_s;
}

QString HtmlWriter::FileBody(const Section& section) {
    QString html;
    if (section.first == 0) {
        html += u"<section id=\"%1\" class=\"archive\">\n"_s.arg(section.Anchor());
    }
    html += Body(section, {});
    if (IsLast(section)) html += u"</section>\n"_s;
    return html;
}

QString HtmlWriter::FileFoot() const {
    return u"</body>\n</html>\n"_s;
}

QString HtmlWriter::Facts() const {
    QString html = Element(u"h1"_s, texts_(Text::ReportTitle)) +
                   u"<table class=\"facts\" cellpadding=\"2\">"_s;
    const auto add = [&](const QString& name, const QString& value) {
        html += u"<tr><td class=\"muted\">"_s + name.toHtmlEscaped() + u"</td><td>"_s +
                value.toHtmlEscaped() + u"</td></tr>"_s;
    };
    add(texts_(Text::Project), projectPath_);
    add(texts_(Text::MadeOn), texts_.Locale().toString(madeOn_, QLocale::ShortFormat));
    html += u"</table><p>"_s;
    html += texts_(Text::ArchiveCount,
                   {{u"n", texts_.Number(static_cast<qint64>(reader_.Archives().size()))}}) +
            u", "_s +
            texts_(Text::TrendCount,
                   {{u"n", texts_.Number(static_cast<qint64>(reader_.TrendCount()))}});
    html += u"<br/>"_s;
    const qint64 problems = static_cast<qint64>(reader_.ProblemCount());
    if (problems == 0) {
        html += texts_(Text::NoProblems).toHtmlEscaped();
    } else {
        html += Link({Section::Kind::Problems},
                     texts_(Text::ProblemCount, {{u"n", texts_.Number(problems)}}));
    }
    html += u"</p>"_s + Element(u"h2"_s, texts_(Text::Contents));
    if (reader_.Archives().empty()) html += Element(u"p"_s, texts_(Text::NoArchives));
    return html;
}

QString HtmlWriter::Contents(const Section& section, const std::vector<int>& pages) {
    const bool inFile = target_ == Target::File;
    QString html = inFile ? QString() : PartLinks(section);
    if (!inFile || section.first == 0) {
        html += kTableBegin.toString() + u"<thead><tr>"_s;
        for (const Text heading :
             {Text::ContentsArchive, Text::Type, Text::ContentsTrends, Text::ContentsPage}) {
            if (heading == Text::ContentsPage && pages.empty()) continue;
            html += Element(u"th"_s, texts_(heading));
        }
        html += u"</tr></thead><tbody>\n"_s;
    }
    QHash<QString, int> firstPages;
    if (!pages.empty()) {
        const std::vector<Section> sections = Sections();
        for (std::size_t i = 0; i < std::min(sections.size(), pages.size()); ++i) {
            firstPages.insert(sections[i].Anchor(), pages[i]);
        }
    }
    const auto addRow = [&](const Section& target, const QString& name, const QString& type,
                            std::size_t trends) {
        html += ContentsRow(target, name, type, trends, firstPages.value(target.Anchor()));
    };
    const std::size_t end =
        std::min(section.first + kArchivesPerSection, reader_.Archives().size());
    for (std::size_t i = section.first; i < end; ++i) {
        const ProjectReader::Archive& archive = reader_.Archives()[i];
        addRow({Section::Kind::Archive, i}, archive.name,
               wording_.TypeInShort(reader_.ReadArchive(archive)), archive.trends.size());
    }
    const std::size_t others = reader_.WithoutArchive().trends.size();
    if (IsLast(section) && others != 0) {
        addRow({Section::Kind::WithoutArchive}, texts_(Text::TrendsWithoutArchive), {}, others);
    }
    if (!inFile || IsLast(section)) html += u"</tbody></table>\n"_s;
    return html;
}

QString HtmlWriter::ContentsRow(const Section& section, const QString& name, const QString& type,
                                std::size_t trends, int page) const {
    return u"<tr><td>"_s + Link(section, name) + u"</td>"_s + Element(u"td"_s, type) +
           Element(u"td"_s, texts_.Number(static_cast<qint64>(trends))) +
           (page > 0 ? Element(u"td"_s, QString::number(page)) : QString()) + u"</tr>\n"_s;
}

QString HtmlWriter::Settings(const Section& section) {
    if (section.kind == Section::Kind::WithoutArchive) return Element(u"h2"_s, Title(section));
    const ProjectReader::Archive& archive = TrendsOf(section);
    QString html = Element(u"h2"_s, texts_(Text::Archive, {{u"name", archive.name}})) +
                   kTableBegin.toString() + u"<tbody>\n"_s;
    for (const Fact& fact : wording_.Archive(reader_.ReadArchive(archive))) {
        html += u"<tr><td class=\"name\" width=\"22%\">"_s + fact.name.toHtmlEscaped() +
                u"</td>"_s + Cell(fact.lines) + u"</tr>\n"_s;
    }
    return html + u"</tbody></table>\n"_s;
}

QString HtmlWriter::TrendHeading(const Section& section) const {
    const auto number = [&](std::size_t value) {
        return texts_.Number(static_cast<qint64>(value));
    };
    const std::size_t count = TrendsOf(section).trends.size();
    if (count <= kTrendsPerSection || target_ == Target::File) {
        return Element(u"h3"_s, texts_(Text::Trends, {{u"n", number(count)}}));
    }
    const std::size_t last = std::min(section.first + kTrendsPerSection, count);
    const QString title = section.first == 0 ? QString() : Title(section) + u": "_s;
    const QString heading =
        Element(u"h3"_s, title + texts_(Text::TrendsPart, {{u"first", number(section.first + 1)},
                                                           {u"last", number(last)},
                                                           {u"n", number(count)}}));
    return heading + PartLinks(section);
}

/// To the parts of a long table before and behind this one.
QString HtmlWriter::PartLinks(const Section& section) const {
    if (target_ != Target::Screen || RowCount(section) <= PerSection(section)) return {};
    QString links;
    Section other = section;
    if (section.first >= PerSection(section)) {
        other.first = section.first - PerSection(section);
        links += Link(other, texts_(Text::PreviousPart)) + u" &#160; "_s;
    }
    if (!IsLast(section)) {
        other.first = section.first + PerSection(section);
        links += Link(other, texts_(Text::NextPart));
    }
    return u"<p>"_s + links + u"</p>"_s;
}

QString HtmlWriter::TrendTable(const Section& section) {
    const std::vector<ado::Bookmark>& trends = TrendsOf(section).trends;
    if (trends.empty()) return Element(u"p"_s, texts_(Text::NoTrends));
    // In a file the table goes on through all sections of the archive.
    const bool inFile = target_ == Target::File;
    const std::size_t end = std::min(section.first + kTrendsPerSection, trends.size());
    QString html;
    if (!inFile || section.first == 0) {
        html += TrendHeading(section) + kTableBegin.toString() + u"<thead><tr>"_s;
        for (const TrendColumnHead& heading : kTrendHeadings) {
            html += u"<th width=\"%1%\">"_s.arg(heading.width) +
                    texts_(heading.name).toHtmlEscaped() + u"</th>"_s;
        }
        html += u"</tr></thead><tbody>\n"_s;
    }
    for (std::size_t i = section.first; i < end; ++i) {
        html += u"<tr>"_s;
        for (const Lines& lines : wording_.Trend(reader_.ReadTrend(trends[i]))) html += Cell(lines);
        html += u"</tr>\n"_s;
    }
    if (!inFile || end == trends.size()) html += u"</tbody></table>\n"_s;
    return html;
}

QString HtmlWriter::ProblemTable() const {
    QString html = kTableBegin.toString() + u"<thead><tr>"_s +
                   Element(u"th"_s, texts_(Text::ProblemWhere)) +
                   Element(u"th"_s, texts_(Text::ProblemWhat)) + u"</tr></thead><tbody>\n"_s;
    for (const Problem& problem : reader_.Problems()) {
        html += u"<tr>"_s + Element(u"td"_s, wording_.Place(problem)) +
                Element(u"td"_s, wording_.Finding(problem)) + u"</tr>\n"_s;
    }
    html += u"</tbody></table>\n"_s;
    if (reader_.ProblemCount() > reader_.Problems().size()) {
        const std::size_t more = reader_.ProblemCount() - reader_.Problems().size();
        html += Element(
            u"p"_s, texts_(Text::ProblemMore, {{u"n", texts_.Number(static_cast<qint64>(more))}}));
    }
    return html;
}

QString HtmlWriter::Cell(const Lines& lines) const {
    QString html = u"<td>"_s;
    for (const Line& line : lines) {
        if (&line != &lines.front()) html += u"<br/>"_s;
        if (line.curve && target_ == Target::File) html += line.curve->Svg();
        if (line.curve && target_ != Target::File) {
            html +=
                u"<img src=\"%1\" width=\"%2\" height=\"%3\"/> "_s.arg(line.curve->PictureName())
                    .arg(Curve::kSampleWidth)
                    .arg(Curve::kSampleHeight);
        }
        const QString text = line.text.toHtmlEscaped().replace(u'\n', u"<br/>"_s);
        const QString look = LookClass(line.look);
        html += look.isEmpty() ? text : u"<span class=\""_s + look + u"\">"_s + text + u"</span>"_s;
    }
    return html + u"</td>"_s;
}

QString HtmlWriter::Link(const Section& section, const QString& text) const {
    if (target_ == Target::Print) return text.toHtmlEscaped();
    const QString target = target_ == Target::File ? u'#' + section.Anchor() : section.Address();
    return u"<a href=\""_s + target + u"\">"_s + text.toHtmlEscaped() + u"</a>"_s;
}

QString HtmlWriter::PlainText(const Section& section) {
    // Parts of the table of contents hold nothing that is not found in the archives.
    if (section.kind == Section::Kind::Overview && section.first != 0) return {};
    QString text = Title(section) + u'\n';
    const auto add = [&](const Lines& lines) {
        for (const Line& line : lines) text += line.text + u'\n';
    };
    if (section.kind == Section::Kind::Problems) {
        for (const Problem& problem : reader_.Problems()) {
            text += wording_.Place(problem) + u'\n' + wording_.Finding(problem) + u'\n';
        }
    }
    if (section.kind == Section::Kind::Overview) {
        text += texts_(Text::ReportTitle) + u'\n' + projectPath_ + u'\n';
    }
    if (section.kind == Section::Kind::Problems || section.kind == Section::Kind::Overview) {
        return text;
    }
    const ProjectReader::Archive& archive = TrendsOf(section);
    if (section.kind == Section::Kind::Archive && section.first == 0) {
        for (const Fact& fact : wording_.Archive(reader_.ReadArchive(archive))) add(fact.lines);
    }
    const std::size_t end = std::min(section.first + kTrendsPerSection, archive.trends.size());
    for (std::size_t i = section.first; i < end; ++i) {
        for (const Lines& lines : wording_.Trend(reader_.ReadTrend(archive.trends[i]))) add(lines);
    }
    return text;
}

}  // namespace report
