#pragma once

#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jet/Disk.h"

namespace jet {

/// Files in memory whose power can be cut: what was written and not synced may then be lost, in
/// any part. Every write, change of size, sync and making of a file counts as one operation, giving
/// and taking a name as two, the second of which makes it durable; from a chosen one on all fail.
class TestDisk final : public Disk {
public:
    Result<std::string> Resolve(const std::string& path) override { return path; }
    Result<std::unique_ptr<File>> Open(const std::string& path, OpenMode mode) override;
    Result<std::unique_ptr<File>> Create(const std::string& path) override;
    Status GiveName(const std::string& from, const std::string& to) override;
    Result<std::unique_ptr<File>> CreateLike(const std::string& path,
                                             const std::string& /*model*/) override {
        return Create(path);
    }
    Result<std::unique_ptr<File>> CreateReplacement(const std::string& model) override {
        return CreateDraft(model);
    }
    Status Replace(const std::string& from, const std::string& to) override;
    Status Remove(const std::string& path) override;
    Result<std::unique_ptr<File>> CreateDraft(const std::string& database) override;
    Status Publish(File& draft, const std::string& path) override;
    bool HasName(const File& file, const std::string& path) override;
    Result<std::unique_ptr<File>> OpenLeftOver(const std::string& path,
                                               const std::string& database) override;
    /// There is only one program.
    Result<std::unique_ptr<Locks>> OpenLocks(const std::string& database, OpenMode mode) override;

    void Put(const std::string& path, std::vector<std::byte> content);
    [[nodiscard]] const std::vector<std::byte>& Content(const std::string& path) const {
        return files_.at(path)->now;
    }
    [[nodiscard]] bool Has(const std::string& path) const { return files_.contains(path); }
    [[nodiscard]] std::size_t Count() const { return files_.size(); }

    [[nodiscard]] int Operations() const { return operations_; }
    /// Operation number `first` and all behind it fail; the write that fails first is done by
    /// half. Negative: none fails.
    void FailFrom(int first) {
        operations_ = 0;
        failFrom_ = first;
    }
    /// What is on the disk when the power comes back: of each write that was not synced, chance
    /// decides.
    void CutPower(std::mt19937& random);

private:
    struct Write {
        std::uint64_t offset;
        std::vector<std::byte> bytes;
        bool isResize = false;  // to `offset` bytes
    };
    struct FileContent {
        std::vector<std::byte> now;
        std::vector<std::byte> durable;
        std::vector<Write> pending;
        std::int64_t changes = 0;
    };
    class Handle;

    [[nodiscard]] bool Fails() { return operations_++ >= failFrom_ && failFrom_ >= 0; }
    static void Apply(const Write& write, std::vector<std::byte>& content);

    std::map<std::string, std::shared_ptr<FileContent>> files_;
    // Names that are gone, and not durably so.
    std::map<std::string, std::shared_ptr<FileContent>> removed_;
    int operations_ = 0;
    int failFrom_ = -1;
};

}  // namespace jet
