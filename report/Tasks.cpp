#include "report/Tasks.h"

#include <algorithm>

#include "projectdb/Text.h"
#include "texts/ReasonText.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

int AsPermille(std::size_t done, std::size_t total) {
    return static_cast<int>(
        std::min<std::size_t>(1000, done * 1000 / std::max<std::size_t>(total, 1)));
}

}  // namespace

TaskError NotWritten(const std::error_code& why, const QString& file) {
    return {texts::ReasonText({paths::NewFile::CauseOf(why), projectdb::ToUtf8(file)})};
}

ThreadTask::~ThreadTask() {
    isCancelled_ = true;
    if (running_.valid()) running_.wait();
}

bool ThreadTask::Step(std::chrono::milliseconds budget) {
    if (!running_.valid()) {
        running_ = std::async(std::launch::async,
                              [this] { work_([this] { return !isCancelled_.load(); }); });
    }
    if (running_.wait_for(budget) != std::future_status::ready) return false;
    running_.get();
    return true;
}

CollectTask::CollectTask(ProjectReader& reader, const ReportTexts& texts)
    : reader_(reader),
      texts_(texts),
      check_([&reader](const ThreadTask::GoOn& goOn) { reader.Check(goOn); },
             texts(Text::Checking)) {}

bool CollectTask::Step(std::chrono::milliseconds budget) {
    if (!isCollected_) {
        isCollected_ = reader_.Collect(budget);
        return false;
    }
    return check_.Step(budget);
}

int CollectTask::Permille() const {
    return AsPermille(reader_.RowsDone(), reader_.RowsTotal());
}

SectionTask::SectionTask(ProjectReader& reader, const ReportTexts& texts,
                         const QString& projectPath, HtmlWriter::Target target)
    : texts_(texts), writer_(reader, texts, projectPath, target), sections_(writer_.Sections()) {}

bool SectionTask::Step(std::chrono::milliseconds budget) {
    const auto end = std::chrono::steady_clock::now() + budget;
    do {
        const std::size_t count = sections_.size();
        if (position_ == count) {
            if (Finish()) return true;
            position_ = 0;
            return false;
        }
        const std::size_t offset = backward_ ? count - position_ : position_;
        const bool goOn = DoSection((start_ + offset) % count);
        ++position_;
        if (!goOn) return true;
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

int SectionTask::Permille() const {
    return AsPermille(position_, sections_.size());
}

FindTask::FindTask(ProjectReader& reader, const ReportTexts& texts, const QString& projectPath,
                   QString needle, const Section& from, bool backward)
    : SectionTask(reader, texts, projectPath, HtmlWriter::Target::Screen),
      needle_(std::move(needle)) {
    const std::size_t count = sections_.size();
    const auto here = std::find(sections_.begin(), sections_.end(), from);
    const auto index = static_cast<std::size_t>(here - sections_.begin());
    start_ = (index + (backward ? count - 1 : 1)) % count;
    backward_ = backward;
}

bool FindTask::DoSection(std::size_t index) {
    if (!writer_.PlainText(sections_[index]).contains(needle_, Qt::CaseInsensitive)) return true;
    found_ = sections_[index];
    return false;
}

HtmlExportTask::HtmlExportTask(ProjectReader& reader, const ReportTexts& texts,
                               const QString& projectPath, const QString& file)
    : SectionTask(reader, texts, projectPath, HtmlWriter::Target::File), name_(file) {}

bool HtmlExportTask::DoSection(std::size_t index) {
    if (file_.Stream() == nullptr) {
        Require(file_.Open(projectdb::ToUtf8(name_)));
        Write(writer_.FileHead());
    }
    Write(writer_.FileBody(sections_[index]));
    return true;
}

bool HtmlExportTask::Finish() {
    Write(writer_.FileFoot());
    Require(file_.TakeName());
    return true;
}

void HtmlExportTask::Write(const QString& html) {
    if (!file_.Write(projectdb::ToUtf8(html))) Require(file_.Error());
}

void HtmlExportTask::Require(const std::error_code& error) const {
    if (error) throw NotWritten(error, name_);
}

}  // namespace report
