#include "jet/write/Journal.h"

#include "CrashTesting.h"
#include "jet/page/GlobalMap.h"

namespace jet {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t kPage = kPageSizeJet4;
const std::string kJournal = std::string(kProject) + "-journal";
const std::string kAside = kJournal + "-set-aside";

Image With(Image image, std::size_t at, std::byte bits) {
    image.at(at) ^= bits;
    return image;
}

Image Resized(Image image, std::size_t size) {
    image.resize(size);
    return image;
}

template <typename T>
void Append(Image& image, T value) {
    const auto bytes = std::as_bytes(std::span(&value, 1));
    image.insert(image.end(), bytes.begin(), bytes.end());
}

std::uint64_t Sum(Bytes bytes, std::uint64_t sum = 0xCBF29CE484222325) {
    for (std::size_t at = 0; at < bytes.size(); at += 8) {
        sum = (sum ^ Load<std::uint64_t>(bytes, at)) * 0x100000001B3;
    }
    return sum ^ sum >> 32;
}

/// The form that versions before wrote, of any pages.
Image FirstForm(const std::vector<std::pair<std::uint32_t, Bytes>>& records, std::uint64_t size) {
    Image image;
    Append(image, std::array<char, 8>{'K', 'V', 'J', 'R', 'N', 'L', '0', '1'});
    Append(image, std::uint32_t{kPage});
    Append(image, static_cast<std::uint32_t>(records.size()));
    Append(image, size);
    Append(image, Sum(image));
    for (const auto& [page, content] : records) {
        Append(image, std::uint64_t{page});
        Append(image, Sum(content, page));
        image.insert(image.end(), content.begin(), content.end());
    }
    return image;
}

/// That of the crash.
Image FirstForm() {
    const Crash& crash = TheCrash();
    std::vector<std::pair<std::uint32_t, Bytes>> records;
    for (const std::size_t page : crash.changed) {
        records.emplace_back(page, Bytes(crash.before).subspan(page * kPage, kPage));
    }
    return FirstForm(records, crash.before.size());
}

struct Left {
    const char* what;
    Image database;
    Image journal;
};

TEST(JournalTest, AnInterruptedChangeIsTakenBack) {
    const Crash& crash = TheCrash();
    const Left lefts[] = {
        {"nothing written", crash.before, crash.journal},
        {"some pages written", crash.Mixture(false), crash.journal},
        {"pages torn", crash.Mixture(true), crash.journal},
        {"everything written", crash.after, crash.journal},
        {"only longer", Resized(crash.before, crash.after.size()), crash.journal},
        {"earlier form, nothing written", crash.before, FirstForm()},
        {"earlier form, some pages written", crash.Mixture(false), FirstForm()},
        {"earlier form, everything written", crash.after, FirstForm()},
    };
    for (const Left& left : lefts) {
        for (const OpenMode mode : {OpenMode::Read, OpenMode::ReadWrite}) {
            SCOPED_TRACE(left.what);
            TestDisk disk;
            disk.Put(kProject, left.database);
            disk.Put(kJournal, left.journal);
            auto database = Must(Database::Open(disk, kProject, mode));
            EXPECT_TRUE(disk.Content(kProject) == crash.before);
            EXPECT_THAT(database->TakeNotices(), IsEmpty());
            EXPECT_EQ(disk.Count(), 1U);
        }
    }
}

TEST(JournalTest, ADoubtfulOneIsSetAsideAndTheFileStaysReadable) {
    const Crash& crash = TheCrash();
    const Image half = crash.Mixture(false);
    const std::size_t page = crash.changed.at(2) * kPage;
    const std::size_t size = crash.journal.size();
    const Image other = ReadWhole(TestData("test2V2000.mdb"));
    const Bytes old(crash.before);
    const Left lefts[] = {
        {"an older backup", crash.backup, crash.journal},
        {"another database", other, crash.journal},
        {"changed since", With(half, page + 100, std::byte{4}), crash.journal},
        {"cut since", Resized(half, crash.before.size() - kPage), crash.journal},
        {"grown since", Resized(half, crash.after.size() + kPage), crash.journal},
        {"damaged head", half, With(crash.journal, 13, std::byte{1})},
        {"damaged magic", half, With(crash.journal, 0, std::byte{1})},
        {"damaged page number", half, With(crash.journal, 40 + 80 + kPage, std::byte{1})},
        {"damaged checksums", half, With(crash.journal, 40 + 16, std::byte{1})},
        {"damaged image", half, With(crash.journal, size - 1, std::byte{1})},
        {"cut", half, Resized(crash.journal, size - 1)},
        {"longer", half, Resized(crash.journal, size + 1)},
        {"empty", half, {}},
        {"not a journal", half, Image(500, std::byte{'x'})},
        {"earlier form, an older backup", crash.backup, FirstForm()},
        {"earlier form, another database", other, FirstForm()},
        {"earlier form, cut", half, Resized(FirstForm(), 5000)},
        {"earlier form, empties the file", crash.before, FirstForm({}, 0)},
        {"earlier form, without page 0", crash.before,
         FirstForm({{1, old.first(kPage)}}, 8 * kPage)},
        {"earlier form, page behind the end", crash.before,
         FirstForm({{0, old.first(kPage)}, {kMostPages, old.first(kPage)}}, crash.before.size())},
        {"earlier form, pages doubled", crash.before,
         FirstForm({{0, old.first(kPage)}, {0, old.first(kPage)}}, crash.before.size())},
    };
    for (const Left& left : lefts) {
        for (const OpenMode mode : {OpenMode::Read, OpenMode::ReadWrite}) {
            SCOPED_TRACE(left.what);
            TestDisk disk;
            disk.Put(kProject, left.database);
            disk.Put(kJournal, left.journal);
            disk.Put(kAside, {std::byte{'!'}});
            auto database = Must(Database::Open(disk, kProject, mode));
            EXPECT_THAT(Must(database->Tables()), testing::Not(IsEmpty()));
            EXPECT_TRUE(disk.Content(kProject) == left.database);
            EXPECT_FALSE(disk.Has(kJournal));
            EXPECT_EQ(disk.Content(kAside).size(), 1U) << "an earlier one is not overwritten";
            EXPECT_TRUE(disk.Content(kAside + "-2") == left.journal);
            const std::vector<std::string> notices = database->TakeNotices();
            // What a half change has left may be told, too: that the file cannot be written.
            EXPECT_THAT(notices, Contains(HasSubstr(kAside + "-2")).Times(1));
        }
    }
}

// Everything is done but making the journal's removal durable: telling a failure would make the
// user do it again.
TEST(JournalTest, AChangeThatIsDoneIsNoFailure) {
    TestDisk disk;
    disk.Put(kProject, TheCrash().before);
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    disk.FailFrom(-1);
    ASSERT_OK(AddTexts(*database, 1));
    const int operations = disk.Operations();
    const auto rows = RowsOf(*database, "TidxTexts").size();
    disk.FailFrom(operations - 1);
    ASSERT_OK(AddTexts(*database, 1));
    disk.FailFrom(-1);
    const std::vector<std::string> notices = database->TakeNotices();
    ASSERT_EQ(notices.size(), 1U);
    EXPECT_THAT(notices[0], HasSubstr("the change is made"));
    EXPECT_EQ(RowsOf(*database, "TidxTexts").size(), rows + 1);
    EXPECT_FALSE(disk.Has(kJournal));

    // When the journal itself stays, the change is taken back.
    const Image before = disk.Content(kProject);
    disk.FailFrom(operations - 2);
    EXPECT_FALSE(AddTexts(*database, 1).IsOk());
    disk.FailFrom(-1);
    database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    EXPECT_TRUE(disk.Content(kProject) == before);
    ASSERT_OK(AddTexts(*database, 1));
}

}  // namespace
}  // namespace jet
