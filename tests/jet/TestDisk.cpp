#include "TestDisk.h"

#include <algorithm>

namespace jet {
namespace {

Status PowerOff() {
    return {StatusCode::Io, "the power is off"};
}

class OneProgram final : public Locks {
public:
    Status LockWriter(std::chrono::milliseconds) override { return {}; }
    void UnlockWriter() override {}
    Status LockPagesShared(std::chrono::milliseconds) override { return {}; }
    Status LetWriterFirst(std::chrono::milliseconds) override { return {}; }
    Status LockPages(std::span<const PageNo>, std::chrono::milliseconds) override { return {}; }
    void UnlockPages() override {}
    int User() const override { return 1; }
    std::vector<std::string> OtherUsers() override { return {}; }
    Status LockAlone() override { return {}; }
};

}  // namespace

class TestDisk::Handle final : public File {
public:
    Handle(TestDisk& disk, std::shared_ptr<FileContent> content)
        : disk_(disk), content_(std::move(content)) {}

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        const auto& now = content_->now;
        if (offset >= now.size()) return std::size_t{0};
        const std::size_t count = std::min<std::size_t>(into.size(), now.size() - offset);
        std::copy_n(now.begin() + static_cast<std::ptrdiff_t>(offset), count, into.begin());
        return count;
    }
    Result<FileStamp> Stamp() const override {
        return FileStamp{content_->now.size(), content_->changes, content_->changes, true};
    }
    Status Write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        const bool fails = disk_.Fails();
        if (fails && disk_.operations_ > disk_.failFrom_ + 1) return PowerOff();
        if (fails) bytes = bytes.first(bytes.size() / 2);
        Do({offset, {bytes.begin(), bytes.end()}, false});
        return fails ? PowerOff() : Status();
    }
    Status Resize(std::uint64_t size) override {
        if (disk_.Fails()) return PowerOff();
        Do({size, {}, true});
        return {};
    }
    Status Sync() override {
        if (disk_.Fails()) return PowerOff();
        content_->durable = content_->now;
        content_->pending.clear();
        return {};
    }

    [[nodiscard]] const std::shared_ptr<FileContent>& Content() const { return content_; }

private:
    void Do(TestDisk::Write write) {
        Apply(write, content_->now);
        content_->pending.push_back(std::move(write));
        ++content_->changes;
    }

    TestDisk& disk_;
    std::shared_ptr<FileContent> content_;
};

void TestDisk::Apply(const Write& write, std::vector<std::byte>& content) {
    if (write.isResize) {
        content.resize(write.offset);
        return;
    }
    content.resize(std::max<std::size_t>(content.size(), write.offset + write.bytes.size()));
    std::copy(write.bytes.begin(), write.bytes.end(),
              content.begin() + static_cast<std::ptrdiff_t>(write.offset));
}

Result<std::unique_ptr<File>> TestDisk::Open(const std::string& path, OpenMode /*mode*/) {
    const auto found = files_.find(path);
    if (found == files_.end()) return Status::NotFound("no such file");
    return std::unique_ptr<File>(std::make_unique<Handle>(*this, found->second));
}

Result<std::unique_ptr<File>> TestDisk::Create(const std::string& path) {
    if (Fails()) return PowerOff();
    if (files_.contains(path)) return Status(StatusCode::Io, "the file exists");
    files_[path] = std::make_shared<FileContent>();
    return Open(path, OpenMode::ReadWrite);
}

Result<std::unique_ptr<Locks>> TestDisk::OpenLocks(const std::string&, OpenMode) {
    return std::unique_ptr<Locks>(std::make_unique<OneProgram>());
}

Status TestDisk::GiveName(const std::string& from, const std::string& to) {
    if (Fails()) return PowerOff();
    if (files_.contains(to)) return {StatusCode::Duplicate, "the file exists"};
    files_[to] = files_.at(from);
    files_.erase(from);
    return {};
}

Status TestDisk::Replace(const std::string& from, const std::string& to) {
    if (Fails()) return PowerOff();
    files_[to] = files_.at(from);
    files_.erase(from);
    return {};
}

Status TestDisk::Remove(const std::string& path) {
    if (Fails()) return PowerOff();
    if (const auto found = files_.find(path); found != files_.end()) {
        removed_.insert_or_assign(path, found->second);
        files_.erase(found);
    }
    if (Fails()) return PowerOff();
    removed_.erase(path);
    return {};
}

Result<std::unique_ptr<File>> TestDisk::CreateDraft(const std::string& /*database*/) {
    if (Fails()) return PowerOff();
    return std::unique_ptr<File>(std::make_unique<Handle>(*this, std::make_shared<FileContent>()));
}

Status TestDisk::Publish(File& draft, const std::string& path) {
    if (Fails()) return PowerOff();
    if (files_.contains(path)) return {StatusCode::Duplicate, "the file exists"};
    const auto content = static_cast<Handle&>(draft).Content();
    if (Fails()) {
        removed_.insert_or_assign(path, content);
        return PowerOff();
    }
    files_[path] = content;
    return {};
}

bool TestDisk::HasName(const File& file, const std::string& path) {
    const auto found = files_.find(path);
    return found != files_.end() && found->second == static_cast<const Handle&>(file).Content();
}

Result<std::unique_ptr<File>> TestDisk::OpenLeftOver(const std::string& path,
                                                     const std::string& /*database*/) {
    return Open(path, OpenMode::Read);
}

void TestDisk::Put(const std::string& path, std::vector<std::byte> content) {
    files_[path] = std::make_shared<FileContent>(FileContent{content, content, {}, 0});
}

void TestDisk::CutPower(std::mt19937& random) {
    for (auto& [path, content] : removed_) {
        if (random() % 2 == 0) files_.emplace(path, content);
    }
    removed_.clear();
    for (auto& [path, content] : files_) {
        std::vector<std::byte> left = content->durable;
        for (const Write& write : content->pending) {
            if (random() % 2 == 0) Apply(write, left);
        }
        // Handles of before the cut keep what they had.
        content = std::make_shared<FileContent>(FileContent{left, left, {}, 0});
    }
    FailFrom(-1);
}

}  // namespace jet
