#pragma once

#include "WriterTesting.h"

namespace jet {

using Image = std::vector<std::byte>;

[[nodiscard]] inline Status AddTexts(Database& database, int count) {
    auto table = Must(database.OpenTable("TidxTexts"));
    TableWriter writer(*table);
    JET_TRY(database.Begin());
    for (int i = 0; i < count; ++i) {
        const std::array<Assignment, 2> values = {
            Assignment{2, Value(u"Idx" + std::u16string(static_cast<std::size_t>(i), u'n'))},
            Assignment{4, Value(std::u16string(200, u'ä'))}};
        JET_TRY(writer.Insert(values).GetStatusOrOk());
    }
    return database.Commit();
}

/// What a program that died in the middle of a commit has left, and what there was around it.
struct Crash {
    Image backup;                      // one commit before
    Image before;                      // the interrupted change
    Image after;                       // all its pages written
    Image journal;                     // of that change
    std::vector<std::size_t> changed;  // pages

    /// The new file with some pages, or in pages the upper half, still old.
    [[nodiscard]] Image Mixture(bool tornPages) const {
        Image image = after;
        for (std::size_t i = 0; i < changed.size(); i += 2) {
            const std::size_t begin =
                changed[i] * kPageSizeJet4 + (tornPages ? kPageSizeJet4 / 2 : 0);
            std::copy_n(before.begin() + static_cast<std::ptrdiff_t>(begin),
                        tornPages ? kPageSizeJet4 / 2 : kPageSizeJet4,
                        image.begin() + static_cast<std::ptrdiff_t>(begin));
        }
        return image;
    }

    static Crash Make() {
        Crash crash;
        crash.backup = ReadWhole(Example("Brauerei.kvs"));
        TestDisk disk;
        disk.Put(kProject, crash.backup);
        ExpectOk(AddTexts(*Must(Database::Open(disk, kProject, OpenMode::ReadWrite)), 1));
        crash.before = disk.Content(kProject);
        const auto run = [&](int failFrom) {
            disk.Put(kProject, crash.before);
            auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
            disk.FailFrom(failFrom);
            return AddTexts(*database, 60);
        };
        ExpectOk(run(-1));
        const int operations = disk.Operations();
        // Everything is written; making it durable fails.
        EXPECT_FALSE(run(operations - 3).IsOk());
        disk.FailFrom(-1);
        crash.after = disk.Content(kProject);
        crash.journal = disk.Content(std::string(kProject) + "-journal");
        for (std::size_t page = 0; page < crash.before.size() / kPageSizeJet4; ++page) {
            const auto at = static_cast<std::ptrdiff_t>(page * kPageSizeJet4);
            if (!std::equal(crash.before.begin() + at, crash.before.begin() + at + kPageSizeJet4,
                            crash.after.begin() + at)) {
                crash.changed.push_back(page);
            }
        }
        EXPECT_GT(crash.changed.size(), 4U);
        EXPECT_GT(crash.after.size(), crash.before.size());
        return crash;
    }
    static void ExpectOk(const Status& status) { EXPECT_TRUE(status.IsOk()) << status.Text(); }
};

[[nodiscard]] inline const Crash& TheCrash() {
    static const Crash crash = Crash::Make();
    return crash;
}

}  // namespace jet
