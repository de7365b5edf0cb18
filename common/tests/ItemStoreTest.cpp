#include "common/ItemStore.h"

#include <android/log.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "common/ConfigKey.h"
#include "common/TextHash.h"
#include "host/testing/LogCapture.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void put(ItemStore& store, const std::string& section, const std::string& key,
         const std::string& value) {
    const auto [item, isNew] = store.insert(store.section(section), key, value);
    if (!isNew) {
        store.replace(item, value);
    }
}

std::string written(const ItemStore& store) {
    std::ostringstream out;
    store.write(out, " ");
    return out.str();
}

std::string get(const ItemStore& store, const std::string& section, const std::string& key) {
    const ItemStore::Item item = store.find(section, key);
    return item == ItemStore::kNone ? "none" : std::string(store.valueOf(item));
}

TEST(ItemStoreTest, EmptyStoreHasNothing) {
    ItemStore store;
    EXPECT_TRUE(store.empty());
    EXPECT_EQ(get(store, "", ""), "none");
    EXPECT_THAT(store.itemsOf(""), IsEmpty());
    EXPECT_EQ(written(store), "");
    store.section("[A]");
    EXPECT_TRUE(store.empty()) << "a section alone is nothing";
    EXPECT_THAT(store.itemsOf("[A]"), IsEmpty());
}

TEST(ItemStoreTest, FindsByBothNames) {
    ItemStore store;
    put(store, "[A]", "k", "1");
    put(store, "[B]", "k", "2");
    put(store, "", "", "3");
    EXPECT_EQ(get(store, "[A]", "k"), "1");
    EXPECT_EQ(get(store, "[B]", "k"), "2");
    EXPECT_EQ(get(store, "", ""), "3");
    EXPECT_EQ(get(store, "[A]", ""), "none");
    EXPECT_EQ(get(store, "[A]", "K"), "none");
    EXPECT_EQ(get(store, "[A]k", ""), "none");
    EXPECT_EQ(store.size(), 3U);
}

// Two sections in which a key has one hash. Of this many sections there are about ten such pairs.
std::pair<std::string, std::string> sectionsOfOneHash(std::string_view key) {
    std::unordered_map<uint32_t, std::string> sections;
    for (int i = 0; i < 300'000; ++i) {
        const std::string section = "section " + std::to_string(i);
        const uint32_t hash = shortHash(hashText(key, hashText(section, 0)));
        const auto [known, isNew] = sections.emplace(hash, section);
        if (!isNew) {
            return {known->second, section};
        }
    }
    return {};
}

TEST(ItemStoreTest, TellsApartSectionsOfOneHash) {
    const auto [one, other] = sectionsOfOneHash("key");
    ASSERT_NE(one, other);
    ItemStore items;
    const auto first = items.insert(items.section(one), "key", "1");
    EXPECT_EQ(items.find(other, "key"), ItemStore::kNone);
    const auto second = items.insert(items.section(other), "key", "2");
    EXPECT_TRUE(second.isNew);
    EXPECT_EQ(items.find(one, "key"), first.item);
    EXPECT_EQ(items.find(other, "key"), second.item);
}

TEST(ItemStoreTest, FirstItemOfANameStays) {
    ItemStore store;
    const ItemStore::Section section = store.section("[A]");
    const auto first = store.insert(section, "k", "1");
    const auto second = store.insert(section, "k", "2");
    EXPECT_TRUE(first.isNew);
    EXPECT_FALSE(second.isNew);
    EXPECT_EQ(first.item, second.item);
    EXPECT_EQ(get(store, "[A]", "k"), "1");
    EXPECT_EQ(store.section("[A]"), section);
}

TEST(ItemStoreTest, InsertsTextsThatAreFollowedByOthers) {
    // Texts as those of a line: more bytes follow, and the last text has no more than it must have.
    const std::string bytes = std::string(100, 'k') + std::string(100, 'v');
    ItemStore store;
    const ItemStore::Section section = store.section("[A]");
    for (size_t size = 0; size <= 100; ++size) {
        const auto key = std::string_view(bytes).substr(100 - size, size);
        const std::unique_ptr<char[]> exact(new char[std::max(size, ItemStore::kReadable)]);
        std::fill_n(exact.get(), std::max(size, ItemStore::kReadable), 'v');
        EXPECT_TRUE(store.insertReadable(section, key, {exact.get(), size}).isNew);
        EXPECT_FALSE(store.insertReadable(section, key, key).isNew);
    }
    for (size_t size = 0; size <= 100; ++size) {
        const ItemStore::Item item = store.find("[A]", std::string(size, 'k'));
        ASSERT_NE(item, ItemStore::kNone);
        EXPECT_STREQ(store.keyOf(item).data(), std::string(size, 'k').c_str());
        EXPECT_STREQ(store.valueOf(item).data(), std::string(size, 'v').c_str());
    }
}

TEST(ItemStoreTest, TextsEndWithANul) {
    ItemStore store;
    put(store, "[A]", "k", "value");
    put(store, "[A]", "k", "v");
    const ItemStore::Item item = store.find("[A]", "k");
    EXPECT_STREQ(store.sectionOf(item).data(), "[A]");
    EXPECT_STREQ(store.keyOf(item).data(), "k");
    EXPECT_STREQ(store.valueOf(item).data(), "v");
}

TEST(ItemStoreTest, ValueOfAnySizeReplacesAnother) {
    ItemStore store;
    put(store, "[A]", "k", "");
    for (size_t size : {1U, 5U, 100'000U, 3U, 300'000U, 0U}) {
        put(store, "[A]", "k", std::string(size, 'x'));
        EXPECT_EQ(get(store, "[A]", "k"), std::string(size, 'x'));
    }
    EXPECT_EQ(store.size(), 1U);
}

TEST(ItemStoreTest, WalksInTheOrderOfConfigKey) {
    ItemStore store;
    for (const char* section : {"[BB]", "[A]", "", "[B]"}) {
        for (const char* key : {"B", "AA", "A", "", "abcdefgz", "abcdefga", "\xff", "\x7f"}) {
            put(store, section, key, "");
        }
    }
    std::vector<std::pair<std::string, std::string>> names;
    for (const ItemStore::Item item : store.inOrder()) {
        names.emplace_back(store.sectionOf(item), store.keyOf(item));
    }
    ASSERT_EQ(names.size(), 32U);
    for (size_t i = 1; i < names.size(); ++i) {
        EXPECT_TRUE(ConfigKey(names[i - 1].first, names[i - 1].second) <
                    ConfigKey(names[i].first, names[i].second))
                << names[i].first << " " << names[i].second;
    }
    std::vector<std::string> keys;
    for (const ItemStore::Item item : store.itemsOf("[B]")) {
        keys.emplace_back(store.keyOf(item));
    }
    EXPECT_THAT(keys, ElementsAre("", "A", "B", "\x7f", "\xff", "AA", "abcdefga", "abcdefgz"));
}

TEST(ItemStoreTest, LongTextsComeByTheirLengthFirst) {
    // The longer a text, the lower its first byte: sorting by first bytes would reverse the order.
    const size_t sizes[] = {255, 256, 300, 65'533, 65'534, 65'535, 65'536, 70'000, 200'000};
    ItemStore store;
    char start = 'z';
    for (const size_t size : sizes) {
        const std::string text(size, start--);
        put(store, text, "k", "");
        put(store, "[S]", text, "");
        put(store, "[S]", text.substr(0, size - 1) + '~', "");
    }
    std::vector<std::string> sections;
    std::vector<std::string> keys;
    for (const ItemStore::Item item : store.inOrder()) {
        (store.keyOf(item) == "k" ? sections : keys)
                .emplace_back(store.keyOf(item) == "k" ? store.sectionOf(item) : store.keyOf(item));
    }
    ASSERT_EQ(sections.size(), std::size(sizes));
    ASSERT_EQ(keys.size(), 2 * std::size(sizes));
    for (size_t i = 0; i < std::size(sizes); ++i) {
        EXPECT_EQ(sections[i].size(), sizes[i]);
        EXPECT_EQ(keys[2 * i].size(), sizes[i]);
        EXPECT_EQ(keys[2 * i + 1].back(), '~') << sizes[i];
    }
    EXPECT_EQ(store.itemsOf("[S]").size(), keys.size());
}

TEST(ItemStoreTest, SectionThatIsContinuedHasAllItsItems) {
    ItemStore store;
    put(store, "[A]", "first", "1");
    put(store, "[B]", "b", "2");
    put(store, "[A]", "last", "3");
    put(store, "[B]", "c", "4");
    const std::vector<ItemStore::Item> items = store.itemsOf("[A]");
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(store.valueOf(items[0]), "3") << "the shorter key comes first";
    EXPECT_EQ(store.valueOf(items[1]), "1");
    EXPECT_EQ(written(store), " [A]:last=3\n [A]:first=1\n [B]:b=2\n [B]:c=4\n");
}

TEST(ItemStoreTest, ItemAddedAfterAWalkIsInTheNext) {
    ItemStore store;
    put(store, "[A]", "b", "1");
    EXPECT_EQ(written(store), " [A]:b=1\n");
    put(store, "[A]", "a", "2");
    EXPECT_EQ(written(store), " [A]:a=2\n [A]:b=1\n");
    put(store, "[A]", "b", "3");
    EXPECT_EQ(written(store), " [A]:a=2\n [A]:b=3\n");
}

TEST(ItemStoreTest, ClearedStoreIsAsNew) {
    ItemStore store;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 1000; ++i) {
            put(store, "[" + std::to_string(i % 7) + "]", std::to_string(i), "v");
        }
        EXPECT_EQ(store.size(), 1000U);
        store.clear();
        EXPECT_TRUE(store.empty());
        EXPECT_EQ(get(store, "[0]", "0"), "none");
        EXPECT_EQ(written(store), "");
    }
    put(store, "[1]", "x", "y");
    EXPECT_EQ(written(store), " [1]:x=y\n");
}

TEST(ItemStoreTest, MovedStoreHasTheItems) {
    ItemStore store;
    put(store, "[A]", "k", "1");
    ItemStore moved = std::move(store);
    EXPECT_EQ(get(moved, "[A]", "k"), "1");
    store = ItemStore();
    put(store, "[B]", "k", "2");
    EXPECT_EQ(written(store), " [B]:k=2\n");
}

TEST(ItemStoreTest, LogsItsItems) {
    ItemStore store;
    put(store, "[A]", "b", "1");
    put(store, "[A]", "a", "2");
    const mlk::testing::LogCapture log;
    store.log("Tag");
    EXPECT_THAT(log.texts(ANDROID_LOG_DEBUG, "Tag"), ElementsAre("\t[A]:a=2", "\t[A]:b=1"));
}

TEST(ItemStoreTest, AgreesWithAMapOfTexts) {
    std::mt19937 random(1);
    const auto text = [&](size_t longest) {
        std::string made(random() % longest, ' ');
        for (char& c : made) {
            c = static_cast<char>('a' + random() % 3);
        }
        return made;
    };
    for (int round = 0; round < 50; ++round) {
        ItemStore store;
        std::map<std::pair<std::string, std::string>, std::string> plain;
        for (int i = 0; i < 300; ++i) {
            const std::string section = text(3);
            const std::string key = text(9);
            const std::string value = text(40);
            put(store, section, key, value);
            plain[{section, key}] = value;
        }
        ASSERT_EQ(store.size(), plain.size());
        ASSERT_EQ(store.inOrder().size(), plain.size());
        for (const auto& [name, value] : plain) {
            ASSERT_EQ(get(store, name.first, name.second), value);
        }
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
