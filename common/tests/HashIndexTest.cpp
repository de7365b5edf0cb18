#include "common/HashIndex.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

// Entries with numbers as names, in an index whose hash function has `hashes` different values.
class Things {
  public:
    explicit Things(uint32_t hashes) : mHashes(hashes) {}

    uint32_t find(uint32_t name) const {
        return mIndex.find(name % mHashes, [&](uint32_t known) { return mNames[known] == name; });
    }
    uint32_t add(uint32_t name) {
        uint32_t& number = mIndex.findOrAdd(name % mHashes,
                                            [&](uint32_t known) { return mNames[known] == name; });
        if (number == HashIndex::kNone) {
            mNames.push_back(name);
            number = static_cast<uint32_t>(mNames.size() - 1);
        }
        return number;
    }
    void clear() {
        mIndex.clear();
        mNames.clear();
    }
    HashIndex& index() { return mIndex; }

  private:
    const uint32_t mHashes;
    HashIndex mIndex;
    std::vector<uint32_t> mNames;
};

TEST(HashIndexTest, EmptyIndexHasNothing) {
    Things things(10);
    EXPECT_EQ(things.find(1), HashIndex::kNone);
    things.index().clear();
    EXPECT_EQ(things.find(1), HashIndex::kNone);
    things.index().expect(100);
    EXPECT_EQ(things.find(1), HashIndex::kNone);
}

TEST(HashIndexTest, FindsEachByItsName) {
    // From a different hash for each entry to the same one for all.
    for (const uint32_t hashes : {UINT32_MAX, 1000U, 7U, 1U}) {
        Things things(hashes);
        for (uint32_t name = 0; name < 2000; ++name) {
            ASSERT_EQ(things.find(name), HashIndex::kNone);
            ASSERT_EQ(things.add(name), name);
            ASSERT_EQ(things.add(name), name) << "it is there already";
        }
        for (uint32_t name = 0; name < 2000; ++name) {
            ASSERT_EQ(things.find(name), name);
        }
        EXPECT_EQ(things.find(2000), HashIndex::kNone);
    }
}

TEST(HashIndexTest, IsUsedAgainOnceItIsCleared) {
    Things things(UINT32_MAX);
    for (int round = 0; round < 3; ++round) {
        for (uint32_t name = 0; name < 500; ++name) {
            ASSERT_EQ(things.add(name + static_cast<uint32_t>(round)), name);
        }
        things.clear();
        EXPECT_EQ(things.find(5), HashIndex::kNone);
    }
}

TEST(HashIndexTest, PlaceThatWasAskedForMayStayFree) {
    HashIndex index;
    const auto none = [](uint32_t) { return false; };
    for (uint32_t hash = 0; hash < 1000; ++hash) {
        EXPECT_EQ(index.findOrAdd(hash, none), HashIndex::kNone);
        EXPECT_EQ(index.find(hash, none), HashIndex::kNone);
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
