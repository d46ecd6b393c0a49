#include "report/PageTarget.h"

#include <QIODevice>
#include <QPageSize>
#include <QPdfWriter>
#include <QPrinter>
#include <tuple>

#include "paths/NewFile.h"
#include "projectdb/Text.h"
#include "report/Tasks.h"

namespace report {
namespace {

class PrinterTarget final : public PageTarget {
public:
    explicit PrinterTarget(std::unique_ptr<QPrinter> printer) : printer_(std::move(printer)) {}
    QPagedPaintDevice& Device() override { return *printer_; }
    void GiveUp() override { printer_->abort(); }

private:
    std::unique_ptr<QPrinter> printer_;
};

/// A new file as Qt writes one. It takes everything: whoever draws does not ask, and the file knows
/// what it has lost.
class NewFileDevice final : public QIODevice {
public:
    explicit NewFileDevice(paths::NewFile& file) : file_(file) { open(WriteOnly | Unbuffered); }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* bytes, qint64 size) override {
        std::ignore = file_.Write({bytes, static_cast<std::size_t>(size)});
        return size;
    }

private:
    paths::NewFile& file_;
};

class PdfTarget final : public PageTarget {
public:
    PdfTarget(const QString& file, const QString& title) : name_(file), device_(file_) {
        writer_ = std::make_unique<QPdfWriter>(&device_);
        writer_->setTitle(title);
        writer_->setPageSize(QPageSize(QPageSize::A4));
    }
    QPagedPaintDevice& Device() override { return *writer_; }
    void RequireGood() override {
        Require(file_.Stream() != nullptr ? file_.Error() : file_.Open(projectdb::ToUtf8(name_)));
    }
    void Finish() override {
        writer_.reset();
        Require(file_.TakeName());
    }

private:
    void Require(const std::error_code& error) const {
        if (error) throw NotWritten(error, name_);
    }

    QString name_;
    paths::NewFile file_;
    NewFileDevice device_;
    std::unique_ptr<QPdfWriter> writer_;
};

}  // namespace

std::unique_ptr<PageTarget> ToPrinter(std::unique_ptr<QPrinter> printer) {
    return std::make_unique<PrinterTarget>(std::move(printer));
}

std::unique_ptr<PageTarget> ToPdf(const QString& file, const QString& title) {
    return std::make_unique<PdfTarget>(file, title);
}

}  // namespace report
