#include "report/HtmlWriter.h"

#include <algorithm>
#include <QHash>
#include <QStringList>

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto kAddressPrefix = "section:"_L1;

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

// A document has its table's looks from the attributes, a file from its style sheet.
void BeginTable(Html& html) {
    html.Begin(u"table"_s, {{u"class"_s, u"grid"_s},
                            {u"border"_s, u"1"_s},
                            {u"cellspacing"_s, u"0"_s},
                            {u"cellpadding"_s, u"4"_s},
                            {u"width"_s, u"100%"_s}});
}

/// With its rows.
void EndTable(Html& html) {
    html.End();
    html.End();
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
    Html html;
    html.Begin(u"html"_s);
    html.Begin(u"head"_s);
    html.Begin(u"style"_s);
    html.Writer().writeCharacters(DocumentStyle(palette));
    html.End();
    html.End();
    html.Begin(u"body"_s);
    Body(html, section, pages);
    html.End();
    html.End();
    return html.Take();
}

void HtmlWriter::Body(Html& html, const Section& section, const std::vector<int>& pages) {
    switch (section.kind) {
        case Section::Kind::Overview:
            if (section.first == 0) Facts(html);
            return Contents(html, section, pages);
        case Section::Kind::Problems:
            html.Element(u"h2"_s, Title(section));
            return ProblemTable(html);
        case Section::Kind::Archive:
        case Section::Kind::WithoutArchive:
            break;
    }
    if (section.first == 0) Settings(html, section);
    TrendTable(html, section);
}

QString HtmlWriter::FileHead() {
    file_.BeginFile();
    file_.Begin(u"html"_s, {{u"xmlns"_s, u"http://www.w3.org/1999/xhtml"_s},
                            {u"xml:lang"_s, texts_.Locale().name().left(2)}});
    file_.Begin(u"head"_s);
    file_.Empty(u"meta"_s, {{u"charset"_s, u"utf-8"_s}});
    file_.Element(u"title"_s, texts_(Text::WindowTitle, {{u"project", projectPath_}}));
    file_.Begin(u"style"_s);
    file_.Writer().writeCharacters(kFileStyle.toString());
    file_.End();
    file_.End();
    file_.Begin(u"body"_s);
    return file_.Take();
}

QString HtmlWriter::FileBody(const Section& section) {
    if (section.first == 0) {
        file_.Begin(u"section"_s, {{u"id"_s, section.Anchor()}, {u"class"_s, u"archive"_s}});
    }
    Body(file_, section, {});
    if (IsLast(section)) file_.End();
    return file_.Take();
}

QString HtmlWriter::FileFoot() {
    file_.End();
    file_.End();
    return file_.Take();
}

void HtmlWriter::Facts(Html& html) const {
    html.Element(u"h1"_s, texts_(Text::ReportTitle));
    html.Begin(u"table"_s, {{u"class"_s, u"facts"_s}, {u"cellpadding"_s, u"2"_s}});
    const auto add = [&](const QString& name, const QString& value) {
        html.Begin(u"tr"_s);
        html.Element(u"td"_s, name, {{u"class"_s, u"muted"_s}});
        html.Element(u"td"_s, value);
        html.End();
    };
    add(texts_(Text::Project), projectPath_);
    add(texts_(Text::MadeOn), texts_.Locale().toString(madeOn_, QLocale::ShortFormat));
    html.End();
    html.Begin(u"p"_s);
    html.Text(texts_(Text::ArchiveCount,
                     {{u"n", texts_.Number(static_cast<qint64>(reader_.Archives().size()))}}) +
              u", "_s +
              texts_(Text::TrendCount,
                     {{u"n", texts_.Number(static_cast<qint64>(reader_.TrendCount()))}}) +
              u'\n');
    const auto problems = static_cast<qint64>(reader_.ProblemCount());
    if (problems == 0) {
        html.Text(texts_(Text::NoProblems));
    } else {
        Link(html, {Section::Kind::Problems},
             texts_(Text::ProblemCount, {{u"n", texts_.Number(problems)}}));
    }
    html.End();
    html.Element(u"h2"_s, texts_(Text::Contents));
    if (reader_.Archives().empty()) html.Element(u"p"_s, texts_(Text::NoArchives));
}

void HtmlWriter::Contents(Html& html, const Section& section, const std::vector<int>& pages) {
    const bool inFile = target_ == Target::File;
    if (!inFile) PartLinks(html, section);
    if (!inFile || section.first == 0) {
        BeginTable(html);
        html.Begin(u"thead"_s);
        html.Begin(u"tr"_s);
        for (const Text heading :
             {Text::ContentsArchive, Text::Type, Text::ContentsTrends, Text::ContentsPage}) {
            if (heading == Text::ContentsPage && pages.empty()) continue;
            html.Element(u"th"_s, texts_(heading));
        }
        html.End();
        html.End();
        html.Begin(u"tbody"_s);
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
        html.Begin(u"tr"_s);
        html.Begin(u"td"_s);
        Link(html, target, name);
        html.End();
        html.Element(u"td"_s, type);
        html.Element(u"td"_s, texts_.Number(static_cast<qint64>(trends)));
        const int page = firstPages.value(target.Anchor());
        if (page > 0) html.Element(u"td"_s, QString::number(page));
        html.End();
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
    if (!inFile || IsLast(section)) EndTable(html);
}

void HtmlWriter::Settings(Html& html, const Section& section) {
    if (section.kind == Section::Kind::WithoutArchive) {
        return html.Element(u"h2"_s, Title(section));
    }
    const ProjectReader::Archive& archive = TrendsOf(section);
    html.Element(u"h2"_s, texts_(Text::Archive, {{u"name", archive.name}}));
    BeginTable(html);
    html.Begin(u"tbody"_s);
    for (const Fact& fact : wording_.Archive(reader_.ReadArchive(archive))) {
        html.Begin(u"tr"_s);
        html.Element(u"td"_s, fact.name, {{u"class"_s, u"name"_s}, {u"width"_s, u"22%"_s}});
        Cell(html, fact.lines);
        html.End();
    }
    EndTable(html);
}

void HtmlWriter::TrendHeading(Html& html, const Section& section) const {
    const auto number = [&](std::size_t value) {
        return texts_.Number(static_cast<qint64>(value));
    };
    const std::size_t count = TrendsOf(section).trends.size();
    if (count <= kTrendsPerSection || target_ == Target::File) {
        return html.Element(u"h3"_s, texts_(Text::Trends, {{u"n", number(count)}}));
    }
    const std::size_t last = std::min(section.first + kTrendsPerSection, count);
    const QString title = section.first == 0 ? QString() : Title(section) + u": "_s;
    html.Element(u"h3"_s, title + texts_(Text::TrendsPart, {{u"first", number(section.first + 1)},
                                                            {u"last", number(last)},
                                                            {u"n", number(count)}}));
    PartLinks(html, section);
}

/// To the parts of a long table before and behind this one.
void HtmlWriter::PartLinks(Html& html, const Section& section) const {
    if (target_ != Target::Screen || RowCount(section) <= PerSection(section)) return;
    html.Begin(u"p"_s);
    Section other = section;
    if (section.first >= PerSection(section)) {
        other.first = section.first - PerSection(section);
        Link(html, other, texts_(Text::PreviousPart));
        html.Text(u" \u00A0 "_s);
    }
    if (!IsLast(section)) {
        other.first = section.first + PerSection(section);
        Link(html, other, texts_(Text::NextPart));
    }
    html.End();
}

void HtmlWriter::TrendTable(Html& html, const Section& section) {
    const std::vector<ado::Bookmark>& trends = TrendsOf(section).trends;
    if (trends.empty()) return html.Element(u"p"_s, texts_(Text::NoTrends));
    // In a file the table goes on through all sections of the archive.
    const bool inFile = target_ == Target::File;
    const std::size_t end = std::min(section.first + kTrendsPerSection, trends.size());
    if (!inFile || section.first == 0) {
        TrendHeading(html, section);
        BeginTable(html);
        html.Begin(u"thead"_s);
        html.Begin(u"tr"_s);
        for (const TrendColumnHead& heading : kTrendHeadings) {
            html.Element(u"th"_s, texts_(heading.name),
                         {{u"width"_s, QString::number(heading.width) + u'%'}});
        }
        html.End();
        html.End();
        html.Begin(u"tbody"_s);
    }
    for (std::size_t i = section.first; i < end; ++i) {
        html.Begin(u"tr"_s);
        for (const Lines& lines : wording_.Trend(reader_.ReadTrend(trends[i]))) Cell(html, lines);
        html.End();
    }
    if (!inFile || end == trends.size()) EndTable(html);
}

void HtmlWriter::ProblemTable(Html& html) const {
    BeginTable(html);
    html.Begin(u"thead"_s);
    html.Begin(u"tr"_s);
    html.Element(u"th"_s, texts_(Text::ProblemWhere));
    html.Element(u"th"_s, texts_(Text::ProblemWhat));
    html.End();
    html.End();
    html.Begin(u"tbody"_s);
    for (const Problem& problem : reader_.Problems()) {
        html.Begin(u"tr"_s);
        html.Element(u"td"_s, wording_.Place(problem));
        html.Element(u"td"_s, wording_.Finding(problem));
        html.End();
    }
    EndTable(html);
    if (reader_.ProblemCount() > reader_.Problems().size()) {
        const std::size_t more = reader_.ProblemCount() - reader_.Problems().size();
        html.Element(u"p"_s,
                     texts_(Text::ProblemMore, {{u"n", texts_.Number(static_cast<qint64>(more))}}));
    }
}

void HtmlWriter::Cell(Html& html, const Lines& lines) const {
    html.Begin(u"td"_s);
    for (const Line& line : lines) {
        if (&line != &lines.front()) html.Empty(u"br"_s);
        if (line.curve && target_ == Target::File) line.curve->WriteSvg(html.Writer());
        if (line.curve && target_ != Target::File) {
            html.Empty(u"img"_s, {{u"src"_s, line.curve->PictureName()},
                                  {u"width"_s, QString::number(Curve::kSampleWidth)},
                                  {u"height"_s, QString::number(Curve::kSampleHeight)}});
            html.Text(u" "_s);
        }
        const QString look = LookClass(line.look);
        look.isEmpty() ? html.Text(line.text)
                       : html.Element(u"span"_s, line.text, {{u"class"_s, look}});
    }
    html.End();
}

void HtmlWriter::Link(Html& html, const Section& section, const QString& text) const {
    if (target_ == Target::Print) return html.Text(text);
    const QString target = target_ == Target::File ? u'#' + section.Anchor() : section.Address();
    html.Element(u"a"_s, text, {{u"href"_s, target}});
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
