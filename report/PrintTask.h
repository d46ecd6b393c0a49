#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "report/Paper.h"
#include "report/PaperTable.h"
#include "report/Tasks.h"

namespace report {

/// Prints the whole report, or writes it as PDF, each chapter beginning on a new page.
///
/// A report of at most kTrendsToCount trends is laid out twice: its table of contents has page
/// numbers. A longer one would take too long for that.
class PrintTask final : public SectionTask {
public:
    static constexpr std::size_t kTrendsToCount = 5000;

    /// The target is set up but for orientation and margins, which the task chooses.
    PrintTask(ProjectReader& reader, const ReportTexts& texts, const QString& projectPath,
              std::unique_ptr<PageTarget> target);
    [[nodiscard]] QString Label() const override;
    [[nodiscard]] int Permille() const override;

private:
    bool DoSection(std::size_t index) override;
    bool Finish() override;
    void AddDocument(const QString& html);
    void AddTable(const Section& section);

    Paper paper_;
    std::optional<PaperTable> table_;  // that goes on through the sections of a chapter
    std::vector<int> firstPages_;
    int pageCount_ = 0;  // 0: not counted
    bool counting_ = false;
};

}  // namespace report
