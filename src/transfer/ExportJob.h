#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <QString>
#include <QThread>
#include <string>

#include "exchange/CsvSheet.h"
#include "exchange/Export.h"
#include "projectdb/Failure.h"

namespace transfer {

/// What goes into which file.
struct ExportWish {
    QString file;
    bool isWorkbook = true;                                  // of archives and trends
    exchange::SheetKind kind = exchange::SheetKind::Trends;  // of CSV
    exchange::CsvForm form{};                                // likewise
    exchange::Selection selection{};
    const words::Language* language = nullptr;
};

/// Writes rows of a project into a file, in a thread of its own over a copy of the project: nobody
/// waits for it, neither the user nor who writes to the project. The file is there as a whole or
/// stays what it was.
class ExportJob final : public QThread {
    Q_OBJECT
public:
    /// `source`: the data source of a connection.
    ExportJob(std::string source, ExportWish wish)
        : source_(std::move(source)), wish_(std::move(wish)) {}
    ~ExportJob() override;

    /// Rows that have been taken, of the archives and trends that there are; 0: not yet known.
    [[nodiscard]] std::size_t Rows() const noexcept { return rows_; }
    [[nodiscard]] std::size_t All() const noexcept { return all_; }
    /// Lets go of it as soon as may be.
    void Cancel() noexcept { isCancelled_ = true; }

    // When it has finished; none of these when it was cancelled.
    [[nodiscard]] bool IsWritten() const noexcept { return isWritten_; }
    /// What has failed, in reading or in writing.
    [[nodiscard]] const std::optional<projectdb::Failure>& Failed() const noexcept {
        return failure_;
    }

protected:
    void run() override;

private:
    class Counted;
    void Write();
    void WriteSheets(const std::function<void(std::string_view)>& put);

    std::string source_;
    ExportWish wish_;
    std::atomic<std::size_t> rows_ = 0;
    std::atomic<std::size_t> all_ = 0;
    std::atomic<bool> isCancelled_ = false;
    bool isWritten_ = false;
    std::optional<projectdb::Failure> failure_;
};

}  // namespace transfer
