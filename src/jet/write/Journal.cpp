#include "jet/write/Journal.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "jet/disk/SystemName.h"
#include "jet/page/GlobalMap.h"

namespace jet {
namespace {

constexpr std::string_view kMagic("KVJRNL02");
constexpr std::string_view kFirstMagic("KVJRNL01");
constexpr std::size_t kPage = kPageSizeJet4;
constexpr std::size_t kSector = 512;
constexpr std::size_t kSectors = kPage / kSector;
constexpr std::size_t kHeadSize = 40;
constexpr std::size_t kRecordHead = 16 + 8 * kSectors;
constexpr std::size_t kFirstHeadSize = 32;
constexpr std::size_t kFirstRecordHead = 16;
constexpr std::uint64_t kMostBytes = std::uint64_t{kMostPages} * kPage;

// Of page 0: what tells a database from others and never changes, and a word for each user, which
// counts the commits.
constexpr std::size_t kIdentitySize = 0x98;
constexpr std::size_t kCommits = 0xE00;

/// FNV-1a over words of eight bytes; the rest byte by byte. Tells a torn write, not an attack.
std::uint64_t Checksum(Bytes bytes, std::uint64_t start = 0xCBF29CE484222325) {
    constexpr std::uint64_t kPrime = 0x100000001B3;
    std::uint64_t sum = start;
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) sum = (sum ^ Load<std::uint64_t>(bytes, at)) * kPrime;
    for (; at < bytes.size(); ++at) sum = (sum ^ LoadU8(bytes, at)) * kPrime;
    return sum ^ sum >> 32;
}

void FillRecord(MutableBytes record, PageNo page, Bytes oldContent, Bytes newContent) {
    Store(record, 0, Raw(page));
    Store(record, 4, std::uint32_t{0});
    for (std::size_t i = 0; i < kSectors; ++i) {
        Store(record, 16 + 8 * i, Checksum(newContent.subspan(kSector * i, kSector)));
    }
    std::memcpy(record.data() + kRecordHead, oldContent.data(), kPage);
    Store(record, 8, Checksum(Bytes(record).subspan(16), Raw(page)));
}

std::array<std::byte, kHeadSize> MakeHead(std::size_t records, std::uint64_t sizeBefore,
                                          std::uint64_t sizeAfter) {
    std::array<std::byte, kHeadSize> head{};
    std::memcpy(head.data(), kMagic.data(), kMagic.size());
    const MutableBytes bytes(head);
    Store(bytes, 8, static_cast<std::uint32_t>(kPage));
    Store(bytes, 12, static_cast<std::uint32_t>(records));
    Store(bytes, 16, sizeBefore);
    Store(bytes, 24, sizeAfter);
    Store(bytes, 32, Checksum(Bytes(head).first(32)));
    return head;
}

enum class Content { Old, New, Other };

/// A page of which each sector is what it was or what it was to become.
Content Compare(Bytes page, Bytes oldContent, Bytes newSums) {
    Content content = Content::Old;
    for (std::size_t i = 0; i < kSectors; ++i) {
        const Bytes sector = page.subspan(kSector * i, kSector);
        const Bytes old = oldContent.subspan(kSector * i, kSector);
        if (std::memcmp(sector.data(), old.data(), kSector) == 0) continue;
        if (Checksum(sector) != Load<std::uint64_t>(newSums, 8 * i)) return Content::Other;
        content = Content::New;
    }
    return content;
}

/// Without checksums of the new content only page 0 tells whether the journal is the database's,
/// and of the moment: one user has counted one commit, or none yet.
bool IsSameMoment(Bytes page0, Bytes oldPage0) {
    if (std::memcmp(page0.data(), oldPage0.data(), kIdentitySize) != 0) return false;
    int counted = 0;
    for (std::size_t at = kCommits; at < kPage; at += 2) {
        const std::uint16_t word = LoadU16(page0, at);
        const std::uint16_t old = LoadU16(oldPage0, at);
        if (word == old) continue;
        const auto next = static_cast<std::uint16_t>(old == 0xFFFF ? 1 : old + 1);
        if (word != next || ++counted > 1) return false;
    }
    return true;
}

}  // namespace

std::size_t Journal::Head::HeadSize() const {
    return isFirstForm ? kFirstHeadSize : kHeadSize;
}

std::size_t Journal::Head::RecordHead() const {
    return isFirstForm ? kFirstRecordHead : kRecordHead;
}

std::string Journal::DatabaseOf(const std::string& path) {
    const std::string_view suffix(kSuffix);
    const bool isJournal = path.size() > suffix.size() && IsWholePath(path) &&
                           path.compare(path.size() - suffix.size(), suffix.size(), suffix) == 0;
    return isJournal ? path.substr(0, path.size() - suffix.size()) : std::string();
}

Result<Journal> Journal::Prepare(Disk& disk, const std::string& database, const File& file,
                                 const Change& change) {
    constexpr std::size_t kSize = kRecordHead + kPage;
    constexpr std::size_t kAtOnce = 64;  // records that are written with one call
    std::unique_ptr<File> draft;
    JET_ASSIGN(draft, disk.CreateDraft(database));
    const auto firstAdded = PageNo{static_cast<std::uint32_t>(change.sizeBefore / kPage)};
    const auto end = std::lower_bound(change.pages.begin(), change.pages.end(), firstAdded,
                                      [](PageNo a, PageNo b) { return Raw(a) < Raw(b); });
    const auto count = static_cast<std::size_t>(end - change.pages.begin());
    JET_TRY(draft->Write(0, MakeHead(count, change.sizeBefore, change.sizeAfter)));
    std::vector<std::byte> records(kAtOnce * kSize);
    std::array<std::byte, kPage> old{};
    for (std::size_t first = 0; first < count; first += kAtOnce) {
        const std::size_t some = std::min(kAtOnce, count - first);
        for (std::size_t i = 0; i < some; ++i) {
            const PageNo page = change.pages[first + i];
            std::size_t got = 0;
            JET_ASSIGN(got, file.Read(std::uint64_t{Raw(page)} * kPage, old));
            if (got != kPage) return Status(StatusCode::Io, "the file has become shorter");
            Bytes content;
            JET_ASSIGN(content, change.newContent(page));
            FillRecord(MutableBytes(records).subspan(i * kSize, kSize), page, old, content);
        }
        JET_TRY(draft->Write(kHeadSize + std::uint64_t{first} * kSize,
                             Bytes(records).first(some * kSize)));
    }
    JET_TRY(draft->Sync());
    return Journal(disk, PathFor(database), std::move(draft));
}

Status Journal::Publish() {
    return disk_->Publish(*file_, path_);
}

Status Journal::Remove(bool& isGone) {
    Status status = disk_->Remove(path_);
    isGone = status.IsOk() || !disk_->HasName(*file_, path_);
    return status;
}

Result<Journal> Journal::Open(Disk& disk, const std::string& path, const std::string& database) {
    std::unique_ptr<File> file;
    JET_ASSIGN(file, disk.OpenLeftOver(path, database));
    return Journal(disk, path, std::move(file));
}

/// False when it is not that of a journal which is whole.
Result<bool> Journal::ReadHead(Head& head) const {
    std::array<std::byte, kHeadSize> buffer{};
    std::size_t count = 0;
    JET_ASSIGN(count, file_->Read(0, buffer));
    const Bytes bytes(buffer);
    const auto hasMagic = [&](std::string_view magic) {
        return std::memcmp(bytes.data(), magic.data(), magic.size()) == 0;
    };
    head.isFirstForm = hasMagic(kFirstMagic);
    if (count < head.HeadSize() || (!head.isFirstForm && !hasMagic(kMagic))) return false;
    const std::size_t checked = head.isFirstForm ? 24 : 32;
    if (Load<std::uint64_t>(bytes, checked) != Checksum(bytes.first(checked))) return false;
    head.records = LoadU32(bytes, 12);
    head.sizeBefore = Load<std::uint64_t>(bytes, 16);
    head.sizeAfter = head.isFirstForm ? 0 : Load<std::uint64_t>(bytes, 24);
    FileStamp stamp;
    JET_ASSIGN(stamp, file_->Stamp());
    const std::uint64_t size =
        head.HeadSize() + std::uint64_t{head.records} * (head.RecordHead() + kPage);
    return LoadU32(bytes, 8) == kPage && head.records > 0 && stamp.size == size &&
           head.sizeBefore <= kMostBytes && head.sizeAfter <= kMostBytes;
}

/// False when it is damaged. The record points into `buffer`.
Result<bool> Journal::ReadRecord(const Head& head, std::uint32_t index,
                                 std::vector<std::byte>& buffer, Record& record) const {
    const std::size_t size = head.RecordHead() + kPage;
    buffer.resize(size);
    std::size_t count = 0;
    JET_ASSIGN(count, file_->Read(head.HeadSize() + std::uint64_t{index} * size, buffer));
    const Bytes bytes(buffer);
    if (count != size) return false;
    record.page = PageNo{LoadU32(bytes, 0)};
    record.newSums = bytes.subspan(16, head.RecordHead() - 16);
    record.image = bytes.subspan(head.RecordHead());
    return Load<std::uint64_t>(bytes, 8) == Checksum(bytes.subspan(16), Raw(record.page)) &&
           Raw(record.page) < head.sizeBefore / kPage;
}

Result<Journal::Verdict> Journal::Judge(const File& file, std::string& reason) const {
    const auto doubtful = [&](std::string why) {
        reason = std::move(why);
        return Verdict::Doubtful;
    };
    const std::string kDamaged = "it is damaged";
    const std::string kNotOurs = "the file has been changed or replaced since";
    Head head;
    bool isWhole = false;
    JET_ASSIGN(isWhole, ReadHead(head));
    if (!isWhole) return doubtful(kDamaged);
    std::uint64_t size = 0;
    JET_ASSIGN(size, file.Length());
    const bool canGrow = head.isFirstForm || size <= std::max(head.sizeBefore, head.sizeAfter);
    if (size < head.sizeBefore || !canGrow) return doubtful(kNotOurs);
    bool isOld = size == head.sizeBefore;
    std::vector<std::byte> buffer;
    std::array<std::byte, kPage> page{};
    std::optional<std::uint32_t> last;
    for (std::uint32_t i = 0; i < head.records; ++i) {
        Record record;
        JET_ASSIGN(isWhole, ReadRecord(head, i, buffer, record));
        const std::uint32_t number = Raw(record.page);
        if (!isWhole || (last ? number <= *last : number != 0)) return doubtful(kDamaged);
        last = number;
        std::size_t count = 0;
        JET_ASSIGN(count, file.Read(std::uint64_t{number} * kPage, page));
        if (count != kPage) return doubtful(kNotOurs);
        Content content = Content::Old;
        if (!head.isFirstForm) {
            content = Compare(page, record.image, record.newSums);
        } else if (std::memcmp(page.data(), record.image.data(), kPage) != 0) {
            const bool isOurs = number != 0 || IsSameMoment(page, record.image);
            content = isOurs ? Content::New : Content::Other;
        }
        if (content == Content::Other) return doubtful(kNotOurs);
        isOld = isOld && content == Content::Old;
    }
    return isOld ? Verdict::Untouched : Verdict::Interrupted;
}

Status Journal::PutBack(File& file) const {
    const auto changed = [] {
        return Status(StatusCode::Io, "the journal changed while it was read");
    };
    Head head;
    bool isWhole = false;
    JET_ASSIGN(isWhole, ReadHead(head));
    if (!isWhole) return changed();
    std::vector<std::byte> buffer;
    for (std::uint32_t i = 0; i < head.records; ++i) {
        Record record;
        JET_ASSIGN(isWhole, ReadRecord(head, i, buffer, record));
        if (!isWhole) return changed();
        JET_TRY(file.Write(std::uint64_t{Raw(record.page)} * kPage, record.image));
    }
    JET_TRY(file.Resize(head.sizeBefore));
    return file.Sync();
}

}  // namespace jet
