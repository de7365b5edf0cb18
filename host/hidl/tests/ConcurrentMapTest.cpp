#include <gtest/gtest.h>
#include <hidl/ConcurrentMap.h>

#include <memory>
#include <string>
#include <vector>

#include "host/testing/Threads.h"

namespace mlk::test {
namespace {

using ::android::hardware::ConcurrentMap;

TEST(ConcurrentMapTest, SetsGetsAndErases) {
    ConcurrentMap<std::string, int> map;
    EXPECT_EQ(map.get("a", -1), -1);
    map.set("a", 1);
    map.set("a", 2);
    EXPECT_EQ(map.get("a", -1), 2);
    EXPECT_EQ(map.eraseIfEqual("a", 1), 0U);
    EXPECT_EQ(map.eraseIfEqual("b", 1), 0U);
    EXPECT_EQ(map.eraseIfEqual("a", 2), 1U);
    EXPECT_EQ(map.erase("a"), 0U);
    map.set("b", 3);
    EXPECT_EQ(map.erase("b"), 1U);
}

std::shared_ptr<int> lock(const std::weak_ptr<int>& weak) {
    return weak.lock();
}

TEST(ConcurrentMapTest, MakesWhatIsMissing) {
    ConcurrentMap<int, std::weak_ptr<int>> map;
    int made = 0;
    const auto make = [&] { return std::make_shared<int>(++made); };
    auto first = map.getOrMake(1, &lock, make);
    EXPECT_EQ(*first, 1);
    EXPECT_EQ(first, map.getOrMake(1, &lock, make));
    EXPECT_EQ(*map.getOrMake(2, &lock, make), 2);
    first = nullptr;  // no longer usable: another is made
    EXPECT_EQ(*map.getOrMake(1, &lock, make), 3);
    EXPECT_EQ(map.getOrMake(4, &lock, [] { return std::shared_ptr<int>(); }), nullptr);
    EXPECT_EQ(made, 3);
}

TEST(ConcurrentMapTest, MakingMayUseTheMap) {
    ConcurrentMap<int, std::weak_ptr<int>> map;
    const auto inner = std::make_shared<int>(5);
    const auto outer =
            map.getOrMake(1, &lock, [&] { return map.getOrMake(2, &lock, [&] { return inner; }); });
    EXPECT_EQ(inner, outer);
}

TEST(ConcurrentMapTest, AllThreadsHaveTheSame) {
    ConcurrentMap<int, std::weak_ptr<int>> map;
    std::vector<std::shared_ptr<int>> got(8);
    testing::inThreads(8, [&](int index) {
        got[static_cast<size_t>(index)] =
                map.getOrMake(1, &lock, [&] { return std::make_shared<int>(index); });
    });
    for (const auto& one : got) {
        EXPECT_EQ(got[0], one);
    }
}

}  // namespace
}  // namespace mlk::test
