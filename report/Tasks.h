#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <system_error>
#include <vector>

#include "paths/NewFile.h"
#include "report/HtmlWriter.h"

namespace report {

/// Work that is done in portions, so that the window stays alive and the user can cancel. A task
/// that is destroyed before it is done leaves nothing behind. Failures are report::TaskError or
/// ado::AdoError; a task that has failed is not stepped again.
class Task {
public:
    virtual ~Task() = default;

    /// Goes on for about `budget`; true when the task is done.
    virtual bool Step(std::chrono::milliseconds budget) = 0;
    /// What is happening now, for the user.
    [[nodiscard]] virtual QString Label() const = 0;
    [[nodiscard]] virtual int Permille() const = 0;
};

/// Why a task could not be done, in the user's words.
struct TaskError {
    QString text;
};

/// For a file that cannot be written.
[[nodiscard]] TaskError NotWritten(const std::error_code& why, const QString& file);

/// Work that cannot be done in portions: done in a thread, and waited for in portions. A task that
/// is destroyed before its end ends the work, and waits for that.
class ThreadTask final : public Task {
public:
    using GoOn = std::function<bool()>;
    /// `work` ends when what it is given returns false; it may throw.
    ThreadTask(std::function<void(const GoOn&)> work, QString label)
        : work_(std::move(work)), label_(std::move(label)) {}
    ~ThreadTask() override;
    bool Step(std::chrono::milliseconds budget) override;
    [[nodiscard]] QString Label() const override { return label_; }
    [[nodiscard]] int Permille() const override { return 0; }

private:
    std::function<void(const GoOn&)> work_;
    QString label_;
    std::atomic<bool> isCancelled_ = false;
    std::future<void> running_;
};

/// Collects what the report is made of, and checks it.
class CollectTask final : public Task {
public:
    CollectTask(ProjectReader& reader, const ReportTexts& texts);
    bool Step(std::chrono::milliseconds budget) override;
    [[nodiscard]] QString Label() const override {
        return isCollected_ ? check_.Label() : texts_(Text::Collecting);
    }
    [[nodiscard]] int Permille() const override;

private:
    ProjectReader& reader_;
    const ReportTexts& texts_;
    bool isCollected_ = false;
    ThreadTask check_;
};

/// A task that goes through all sections of the report, one after another.
class SectionTask : public Task {
public:
    bool Step(std::chrono::milliseconds budget) final;
    [[nodiscard]] int Permille() const override;

protected:
    SectionTask(ProjectReader& reader, const ReportTexts& texts, const QString& projectPath,
                HtmlWriter::Target target);

    /// Does one section; false ends the task before the last one.
    virtual bool DoSection(std::size_t index) = 0;
    /// After the last section. False begins with the first one again.
    virtual bool Finish() { return true; }
    [[nodiscard]] std::size_t Position() const noexcept { return position_; }

    const ReportTexts& texts_;
    HtmlWriter writer_;
    std::vector<Section> sections_;
    // The order in which the sections are visited begins here and comes round to it again.
    std::size_t start_ = 0;
    bool backward_ = false;

private:
    std::size_t position_ = 0;  // sections done
};

/// Looks for a text in the sections behind (or before) one of them, all around.
class FindTask final : public SectionTask {
public:
    FindTask(ProjectReader& reader, const ReportTexts& texts, const QString& projectPath,
             QString needle, const Section& from, bool backward);
    [[nodiscard]] QString Label() const override {
        return texts_(Text::Searching, {{u"text", needle_}});
    }
    /// The first section that holds it.
    [[nodiscard]] const std::optional<Section>& Found() const noexcept { return found_; }

private:
    bool DoSection(std::size_t index) override;

    QString needle_;
    std::optional<Section> found_;
};

/// Writes the whole report into one file, which is there when the task is done and not before.
class HtmlExportTask final : public SectionTask {
public:
    HtmlExportTask(ProjectReader& reader, const ReportTexts& texts, const QString& projectPath,
                   const QString& file);
    [[nodiscard]] QString Label() const override { return texts_(Text::Exporting); }

private:
    bool DoSection(std::size_t index) override;
    bool Finish() override;
    void Write(const QString& html);
    void Require(const std::error_code& error) const;

    QString name_;
    paths::NewFile file_;
};

}  // namespace report
