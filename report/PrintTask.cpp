#include "report/PrintTask.h"

#include "report/ReportDocument.h"

namespace report {

PrintTask::PrintTask(ProjectReader& reader, const ReportTexts& texts, const QString& projectPath,
                     std::unique_ptr<PageTarget> target)
    : SectionTask(reader, texts, projectPath, HtmlWriter::Target::Print),
      paper_(std::move(target), texts, texts(Text::WindowTitle, {{u"project", projectPath}})),
      firstPages_(sections_.size()),
      counting_(reader.TrendCount() <= kTrendsToCount) {}

QString PrintTask::Label() const {
    return texts_(counting_ ? Text::CountingPages : Text::Printing);
}

int PrintTask::Permille() const {
    const int permille = SectionTask::Permille();
    if (pageCount_ > 0) return 500 + permille / 2;
    return counting_ ? permille / 2 : permille;
}

bool PrintTask::DoSection(std::size_t index) {
    if (!counting_ && paper_.IsCounting()) paper_.BeginDrawing(pageCount_);
    const Section& section = sections_[index];
    const bool isTable = ReportTables::IsTable(section.kind);
    if (!isTable || section.first == 0) {
        paper_.NextPage();
        firstPages_[index] = paper_.Page();
        const bool isNumbered = pageCount_ > 0 || counting_;
        AddDocument(isTable ? writer_.HeadPage(section)
                            : writer_.Page(section, PaperPalette(),
                                           isNumbered ? firstPages_ : std::vector<int>()));
    }
    if (isTable) AddTable(section);
    return true;
}

void PrintTask::AddDocument(const QString& html) {
    ReportDocument document;
    document.setDefaultFont(PaperFont());
    document.setPageSize(paper_.Body());
    document.setDocumentMargin(0);
    document.setHtml(html);
    paper_.Draw(document);
}

void PrintTask::AddTable(const Section& section) {
    const ReportTables& tables = writer_.Tables();
    if (tables.RowCount(section) == 0) return;
    if (section.first == 0) {
        constexpr qreal kGap = 8;
        paper_.Advance(kGap);
        table_.emplace(paper_, tables.Heads(section.kind));
        table_->Begin();
    }
    for (std::size_t i = section.first; i < writer_.EndRow(section); ++i) {
        table_->AddRow(tables.Row(section, i));
    }
    if (writer_.IsLast(section)) table_->End();
}

bool PrintTask::Finish() {
    if (counting_) {
        counting_ = false;
        pageCount_ = paper_.Page();
        return false;
    }
    paper_.End();
    return true;
}

}  // namespace report
