#pragma once

#include <memory>
#include <QPrinter>
#include <QSizeF>
#include <QString>

#include "report/ReportTexts.h"

class QPainter;
class QTextDocument;

namespace report {

/// Pages that are filled from top to bottom, with header and number, or that are only counted.
/// Lengths are points of 96 an inch. A PDF file that has been begun is removed when it does not get
/// done. Failures are report::TaskError.
class Paper {
public:
    /// The printer is set up but for paper and margins. `texts` is borrowed.
    Paper(std::unique_ptr<QPrinter> printer, const ReportTexts& texts, QString header);
    ~Paper();
    Paper(const Paper&) = delete;
    Paper& operator=(const Paper&) = delete;

    /// Begins with the first page again; from now on pages are drawn. `pageCount`: how many there
    /// will be; 0: nobody has counted them.
    void BeginDrawing(int pageCount);
    [[nodiscard]] bool IsCounting() const noexcept { return painter_ == nullptr; }
    void NextPage();
    void End();

    [[nodiscard]] int Page() const noexcept { return page_; }  // from 1; 0: none yet
    /// Of what stands on a page between header and number.
    [[nodiscard]] QSizeF Body() const noexcept { return body_; }
    [[nodiscard]] qreal Y() const noexcept { return y_; }
    [[nodiscard]] qreal Room() const noexcept { return body_.height() - y_; }
    void Advance(qreal height) noexcept { y_ += height; }
    /// For drawing on the page, whose body begins at 0, 0; null while pages are counted.
    [[nodiscard]] QPainter* Painter() const noexcept { return painter_.get(); }

    /// Draws a document that has been laid out on pages of Body(). REQUIRES: the page is empty.
    void Draw(const QTextDocument& document);

private:
    void DrawMargins();
    [[noreturn]] void Fail() const;

    std::unique_ptr<QPrinter> printer_;
    std::unique_ptr<QPainter> painter_;
    const ReportTexts& texts_;
    QString header_;
    QSizeF body_;
    qreal y_ = 0;
    int page_ = 0;
    int pageCount_ = 0;
    bool done_ = false;
};

/// What is printed is black on white, whatever the desktop looks like.
[[nodiscard]] QPalette PaperPalette();
[[nodiscard]] QFont PaperFont();

}  // namespace report
