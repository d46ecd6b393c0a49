#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "exchange/Apply.h"
#include "exchange/CsvSheet.h"
#include "exchange/Export.h"
#include "exchange/Plan.h"
#include "support/NewFolder.h"

namespace exchange {

/// A copy of a project with an open connection; it goes with the test.
class Project {
public:
    explicit Project(const std::string& original) {
        folder_ = NewFolder("exchange");
        std::filesystem::copy_file(original, Path());
        std::filesystem::permissions(Path(), std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add);
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + Path() + ";");
    }
    ~Project() {
        connection.Close();
        std::filesystem::remove_all(folder_);
    }
    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;

    [[nodiscard]] std::string Path() const { return (folder_ / "project.kvs").string(); }
    [[nodiscard]] std::string Bytes() const {
        std::ostringstream bytes;
        bytes << std::ifstream(Path(), std::ios::binary).rdbuf();
        return bytes.str();
    }

    ado::Connection connection;

private:
    std::filesystem::path folder_;
};

/// Bytes that come in small pieces, so that every end of one is met.
class Bytes final : public csv::Source {
public:
    explicit Bytes(std::string text, std::size_t piece = 37)
        : text_(std::move(text)), piece_(piece) {}
    std::string_view Next() override {
        // The first line in one piece.
        const std::size_t size = at_ == 0 ? std::max(piece_, text_.find('\n') + 1) : piece_;
        const std::string_view next = std::string_view(text_).substr(at_, size);
        at_ += next.size();
        return next;
    }
    const std::string& Error() const override { return error_; }
    const std::string& Name() const override { return name_; }

private:
    std::string text_;
    std::size_t piece_;
    std::size_t at_ = 0;
    std::string error_;
    std::string name_ = "input";
};

inline std::string Exported(ado::Connection& connection, SheetKind kind, CsvForm form = {},
                            const char* language = "en", const Selection& selection = {}) {
    std::string text;
    CsvSheetWriter writer(form, [&](std::string_view piece) { text += piece; });
    Export(connection, kind, selection, *words::FindLanguage(language), writer);
    return text;
}

inline Plan Planned(ado::Connection& connection, const std::string& text,
                    const PlanOptions& options = {}, csv::Encoding encoding = csv::Encoding::Utf8,
                    const ReadOptions& reading = {}) {
    Bytes bytes(text);
    CsvInput input(bytes, {encoding, 0});
    return MakePlan(connection, input, options, reading);
}

}  // namespace exchange
