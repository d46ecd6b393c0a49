#pragma once

#include <memory>
#include <QString>

class QPagedPaintDevice;
class QPrinter;

namespace report {

/// Where pages go. What has been begun and is not finished leaves nothing behind. Failures are
/// report::TaskError.
class PageTarget {
public:
    PageTarget() = default;
    virtual ~PageTarget() = default;
    PageTarget(const PageTarget&) = delete;
    PageTarget& operator=(const PageTarget&) = delete;

    [[nodiscard]] virtual QPagedPaintDevice& Device() = 0;
    /// To be called before the first page is drawn and between pages.
    virtual void RequireGood() {}
    /// All has been drawn, and nothing draws any more.
    virtual void Finish() {}
    /// Nothing more is drawn; something draws still.
    virtual void GiveUp() {}
};

[[nodiscard]] std::unique_ptr<PageTarget> ToPrinter(std::unique_ptr<QPrinter> printer);
/// A PDF file, which has its name when it is finished; until then what was there before has it.
[[nodiscard]] std::unique_ptr<PageTarget> ToPdf(const QString& file, const QString& title);

}  // namespace report
