#include "jet/detail/Journal.h"

#include <cstring>
#include <optional>
#include <vector>

#include "jet/detail/Bytes.h"

namespace jet {
namespace {

constexpr std::array<char, 8> kMagic = {'K', 'V', 'J', 'R', 'N', 'L', '0', '1'};
constexpr std::size_t kHeadSize = 32;
constexpr std::size_t kRecordHead = 16;
constexpr std::size_t kChecked = 24;  // bytes of the head that its checksum covers

/// FNV-1a over words of eight bytes; the rest byte by byte. Tells a torn write, not an attack.
std::uint64_t Checksum(Bytes bytes, std::uint64_t start = 0xCBF29CE484222325) {
    constexpr std::uint64_t kPrime = 0x100000001B3;
    std::uint64_t sum = start;
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) sum = (sum ^ Load<std::uint64_t>(bytes, at)) * kPrime;
    for (; at < bytes.size(); ++at) sum = (sum ^ LoadU8(bytes, at)) * kPrime;
    return sum ^ sum >> 32;
}

struct Head {
    std::uint32_t pageSize = 0;
    std::uint32_t records = 0;
    std::uint64_t sizeBefore = 0;
};

/// Empty when the head was never finished.
Result<std::optional<Head>> ReadHead(const File& journal) {
    std::array<std::byte, kHeadSize> bytes{};
    std::size_t count = 0;
    JET_ASSIGN(count, journal.Read(0, bytes));
    const bool whole =
        count == kHeadSize && std::memcmp(bytes.data(), kMagic.data(), kMagic.size()) == 0 &&
        Load<std::uint64_t>(bytes, kChecked) == Checksum(Bytes(bytes).first(kChecked));
    const Head head{LoadU32(bytes, 8), LoadU32(bytes, 12), Load<std::uint64_t>(bytes, 16)};
    if (!whole || (head.pageSize != kPageSizeJet4 && head.pageSize != kPageSizeJet3)) {
        return std::optional<Head>();
    }
    return std::optional(head);
}

struct Record {
    PageNo page{};
    Bytes image;
};

/// Reads record number `index` into `buffer`; empty when it was never finished.
Result<std::optional<Record>> ReadRecord(const File& journal, const Head& head, std::uint32_t index,
                                         std::vector<std::byte>& buffer) {
    const std::size_t size = kRecordHead + head.pageSize;
    buffer.resize(size);
    std::size_t count = 0;
    JET_ASSIGN(count, journal.Read(kHeadSize + std::uint64_t{index} * size, buffer));
    const Bytes bytes(buffer);
    if (count != size) return std::optional<Record>();
    const Bytes image = bytes.subspan(kRecordHead);
    if (Load<std::uint64_t>(bytes, 8) != Checksum(image, LoadU32(bytes, 0))) {
        return std::optional<Record>();
    }
    return std::optional(Record{PageNo{LoadU32(bytes, 0)}, image});
}

}  // namespace

Status Journal::Write(Disk& disk, const std::string& database, std::size_t pageSize,
                      std::uint64_t sizeBefore, const Images& before) {
    std::unique_ptr<File> journal;
    JET_ASSIGN(journal, disk.Create(PathFor(database)));
    std::vector<std::byte> bytes(kHeadSize + before.size() * (kRecordHead + pageSize));
    const std::span<std::byte> all(bytes);
    std::memcpy(bytes.data(), kMagic.data(), kMagic.size());
    Store(all, 8, static_cast<std::uint32_t>(pageSize));
    Store(all, 12, static_cast<std::uint32_t>(before.size()));
    Store(all, 16, sizeBefore);
    Store(all, kChecked, Checksum(Bytes(bytes).first(kChecked)));
    std::size_t at = kHeadSize;
    for (const auto& [page, image] : before) {
        Store(all, at, page);
        Store(all, at + 8, Checksum(Bytes(*image).first(pageSize), page));
        std::memcpy(bytes.data() + at + kRecordHead, image->data(), pageSize);
        at += kRecordHead + pageSize;
    }
    JET_TRY(journal->Write(0, bytes));
    return journal->Sync();
}

Status Journal::Remove(Disk& disk, const std::string& database) {
    return disk.Remove(PathFor(database));
}

Result<bool> Journal::Exists(Disk& disk, const std::string& database) {
    auto journal = disk.Open(PathFor(database), OpenMode::Read);
    if (journal.IsOk()) return true;
    if (journal.GetStatus().Code() == StatusCode::NotFound) return false;
    return journal.GetStatus();
}

Result<bool> Journal::RollBack(Disk& disk, const std::string& database, File& file) {
    auto journal = disk.Open(PathFor(database), OpenMode::Read);
    if (!journal.IsOk()) {
        if (journal.GetStatus().Code() == StatusCode::NotFound) return false;
        return journal.GetStatus().In("the journal of an interrupted change");
    }
    std::optional<Head> head;
    JET_ASSIGN(head, ReadHead(**journal));
    // All records are checked before the first one is put back: a journal is valid as a whole.
    std::vector<std::byte> buffer;
    std::optional<Record> record;
    bool whole = head.has_value();
    for (std::uint32_t i = 0; whole && i < head->records; ++i) {
        JET_ASSIGN(record, ReadRecord(**journal, *head, i, buffer));
        whole = record.has_value();
    }
    if (!whole) {
        JET_TRY(Remove(disk, database));
        return false;
    }
    for (std::uint32_t i = 0; i < head->records; ++i) {
        JET_ASSIGN(record, ReadRecord(**journal, *head, i, buffer));
        if (!record) return Status(StatusCode::Io, "the journal changed while it was read");
        JET_TRY(file.Write(std::uint64_t{Raw(record->page)} * head->pageSize, record->image));
    }
    JET_TRY(file.Resize(head->sizeBefore));
    JET_TRY(file.Sync());
    JET_TRY(Remove(disk, database));
    return true;
}

}  // namespace jet
