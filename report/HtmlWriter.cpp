#include "report/HtmlWriter.h"

#include <algorithm>
#include <QHash>
#include <QStringList>

#include "differences/DifferenceTexts.h"
#include "findings/FindingTexts.h"
#include "report/HtmlStyle.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

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

}  // namespace

HtmlWriter::HtmlWriter(ProjectReader& reader, const ReportTexts& texts, QString projectPath,
                       Target target)
    : reader_(reader),
      texts_(texts),
      wording_(texts),
      tables_(reader, texts, wording_),
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
    add({Section::Kind::Findings});
    if (reader_.Differences() != nullptr) add({Section::Kind::Differences});
    return sections;
}

/// Rows of the table that a section shows a part of.
std::size_t HtmlWriter::RowCount(const Section& section) const {
    switch (section.kind) {
        case Section::Kind::Overview:
            return reader_.Archives().size();
        case Section::Kind::Problems:
            return 0;  // there are few of them
        default:
            return tables_.RowCount(section);
    }
}

std::size_t HtmlWriter::PerSection(const Section& section) {
    return section.kind == Section::Kind::Overview ? kArchivesPerSection : kRowsPerSection;
}

std::size_t HtmlWriter::EndRow(const Section& section) const {
    return std::min(section.first + PerSection(section), RowCount(section));
}

bool HtmlWriter::IsLast(const Section& section) const {
    return section.first + PerSection(section) >= RowCount(section);
}

QString HtmlWriter::Title(const Section& section) const {
    switch (section.kind) {
        case Section::Kind::Overview:
            return texts_(Text::Overview);
        case Section::Kind::Archive:
            return tables_.TrendsOf(section).name;
        case Section::Kind::WithoutArchive:
            return texts_(Text::TrendsWithoutArchive);
        case Section::Kind::Problems:
            return texts_(Text::Problems);
        case Section::Kind::Findings:
            return texts_(Text::Findings);
        case Section::Kind::Differences:
            return texts_(Text::DifferencesTo, {{u"file", reader_.ComparedWith()}});
    }
    return {};
}

QString HtmlWriter::Page(const Section& section, const QPalette& palette,
                         const std::vector<int>& pages) {
    Html html;
    BeginPage(html, palette);
    Body(html, section, pages);
    html.End();
    html.End();
    return html.Take();
}

QString HtmlWriter::HeadPage(const Section& section) {
    Html html;
    BeginPage(html, QPalette(Qt::white));
    Chapter(html, section);
    html.End();
    html.End();
    return html.Take();
}

void HtmlWriter::BeginPage(Html& html, const QPalette& palette) const {
    html.Begin(u"html"_s);
    html.Begin(u"head"_s);
    html.Begin(u"style"_s);
    html.Writer().writeCharacters(DocumentStyle(palette));
    html.End();
    html.End();
    html.Begin(u"body"_s);
}

void HtmlWriter::Body(Html& html, const Section& section, const std::vector<int>& pages) {
    if (section.kind == Section::Kind::Overview) {
        if (section.first == 0) Facts(html);
        return Contents(html, section, pages);
    }
    if (section.first == 0) Chapter(html, section);
    if (section.kind == Section::Kind::Problems) return ProblemTable(html);
    Table(html, section);
}

/// What stands in front of a section's table.
void HtmlWriter::Chapter(Html& html, const Section& section) {
    if (section.kind == Section::Kind::Archive) return Settings(html, section);
    html.Element(u"h2"_s, Title(section));
    const CheckedProject& checked = reader_.Findings();
    if (section.kind == Section::Kind::Findings) {
        html.Element(u"p"_s, checked.failure ? texts_(Text::FindingsFailed,
                                                      {{u"cause", checked.failure->Text()}})
                                             : FindingsText());
    }
    if (section.kind == Section::Kind::Differences) {
        for (const project::TableDifference& table : reader_.Differences()->tables) {
            html.Element(
                u"p"_s,
                differences::DifferenceTexts(texts_.Table(), *reader_.Differences()).TextOf(table));
        }
        if (reader_.Differences()->IsEmpty()) html.Element(u"p"_s, texts_(Text::DifferencesNone));
    }
}

/// "3 errors, 28 warnings"
QString HtmlWriter::FindingsText() const {
    const project::Judgement& judgement = reader_.Findings().judgement;
    if (judgement.open.empty()) return texts_(Text::FindingsNone);
    return findings::CountText(findings::CountsOf(judgement.open), texts_.Table());
}

QString HtmlWriter::FileHead() {
    file_.BeginFile();
    file_.Begin(u"html"_s, {{u"xmlns"_s, u"http://www.w3.org/1999/xhtml"_s},
                            {u"xml:lang"_s, texts_.Locale().name().left(2)}});
    file_.Begin(u"head"_s);
    file_.Empty(u"meta"_s, {{u"charset"_s, u"utf-8"_s}});
    file_.Element(u"title"_s, texts_(Text::WindowTitle, {{u"project", projectPath_}}));
    file_.Begin(u"style"_s);
    file_.Writer().writeCharacters(FileStyle());
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
    html.Empty(u"br"_s);
    const CheckedProject& checked = reader_.Findings();
    Link(html, {Section::Kind::Findings},
         checked.failure ? texts_(Text::FindingsFailed, {{u"cause", checked.failure->Text()}})
                         : texts_(Text::FindingsMade, {{u"text", FindingsText()}}));
    if (reader_.Differences() != nullptr) {
        html.Empty(u"br"_s);
        const Section differences{Section::Kind::Differences};
        Link(html, differences, Title(differences));
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
    const ProjectReader::Archive& archive = tables_.TrendsOf(section);
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
    const std::size_t count = RowCount(section);
    const bool isWhole = count <= kRowsPerSection || target_ == Target::File;
    if (section.kind == Section::Kind::Findings || section.kind == Section::Kind::Differences) {
        return PartLinks(html, section);
    }
    if (isWhole) return html.Element(u"h3"_s, texts_(Text::Trends, {{u"n", number(count)}}));
    const std::size_t last = EndRow(section);
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

void HtmlWriter::Table(Html& html, const Section& section) {
    const std::size_t count = RowCount(section);
    const bool isTrends =
        section.kind == Section::Kind::Archive || section.kind == Section::Kind::WithoutArchive;
    if (count == 0 && isTrends) return html.Element(u"p"_s, texts_(Text::NoTrends));
    if (count == 0) return;
    // In a file the table goes on through all sections of its chapter.
    const bool inFile = target_ == Target::File;
    const std::size_t end = EndRow(section);
    if (!inFile || section.first == 0) {
        TrendHeading(html, section);
        BeginTable(html);
        html.Begin(u"thead"_s);
        html.Begin(u"tr"_s);
        for (const TableHead& head : tables_.Heads(section.kind)) {
            html.Element(u"th"_s, head.title, {{u"width"_s, QString::number(head.width) + u'%'}});
        }
        html.End();
        html.End();
        html.Begin(u"tbody"_s);
    }
    for (std::size_t i = section.first; i < end; ++i) {
        html.Begin(u"tr"_s);
        for (const Lines& lines : tables_.Row(section, i)) Cell(html, lines);
        html.End();
    }
    if (!inFile || end == count) EndTable(html);
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
        if (!line.link.isEmpty() && target_ == Target::Screen) {
            html.Element(u"a"_s, line.text, {{u"href"_s, line.link}, {u"class"_s, look}});
        } else if (look.isEmpty()) {
            html.Text(line.text);
        } else {
            html.Element(u"span"_s, line.text, {{u"class"_s, look}});
        }
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
    if (section.kind == Section::Kind::Archive && section.first == 0) {
        const ArchiveRow row = reader_.ReadArchive(tables_.TrendsOf(section));
        for (const Fact& fact : wording_.Archive(row)) add(fact.lines);
    }
    for (std::size_t i = section.first; i < EndRow(section); ++i) {
        for (const Lines& lines : tables_.Row(section, i)) add(lines);
    }
    return text;
}

}  // namespace report
