#include "ado/detail/KeyList.h"

#include <gtest/gtest.h>

#include <random>

namespace ado {
namespace {

TEST(KeyListTest, KeysKeepTheirOrderWhateverIsTakenOut) {
    std::mt19937 random(1);
    KeyList list;
    std::vector<RowKey> model;
    for (int step = 0; step < 5000; ++step) {
        // Runs of removals at one place, forward and backward, and anywhere.
        const std::size_t place = step % 7 < 3 ? model.size() / 2 : random() % (model.size() + 1);
        if (step % 100 < 40 || place >= model.size()) {
            model.push_back(random());
            list.Append(model.back());
        } else {
            list.Erase(place);
            model.erase(model.begin() + static_cast<std::ptrdiff_t>(place));
        }
        ASSERT_EQ(list.Size(), model.size());
        for (std::size_t i = 0; i < model.size(); ++i) ASSERT_EQ(list[i], model[i]) << step;
    }
    list.Clear();
    EXPECT_EQ(list.Size(), 0U);
    list.Append(7);
    EXPECT_EQ(list[0], 7U);
}

}  // namespace
}  // namespace ado
