#include "common/TextArena.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

// Allocates texts of many sizes, each filled with one letter.
class Texts {
  public:
    void add(TextArena& arena, size_t size) {
        char* const text = arena.allocate(size);
        const char letter = static_cast<char>('a' + mTexts.size() % 26);
        std::memset(text, letter, size);
        mTexts.emplace_back(text, std::string(size, letter));
    }
    void expectUnchanged() const {
        for (const auto& [text, expected] : mTexts) {
            ASSERT_EQ(std::string(text, expected.size()), expected);
        }
    }

  private:
    std::vector<std::pair<const char*, std::string>> mTexts;
};

TEST(TextArenaTest, TextsDoNotOverlap) {
    TextArena arena;
    Texts texts;
    std::mt19937 random(1);
    for (int i = 0; i < 5000; ++i) {
        texts.add(arena, random() % 100);
        if (i % 1000 == 0) {
            texts.add(arena, 300'000);  // more than any block for many texts has
        }
    }
    texts.expectUnchanged();
}

TEST(TextArenaTest, TextsStayWhereTheyAreWhenTheArenaMoves) {
    TextArena arena;
    Texts texts;
    texts.add(arena, 2000);
    TextArena moved = std::move(arena);
    texts.add(moved, 20);
    texts.add(moved, 20'000);
    arena = TextArena();
    texts.add(arena, 20);
    texts.expectUnchanged();
}

TEST(TextArenaTest, ClearedArenaUsesItsBlocksAgain) {
    TextArena arena;
    std::set<const char*> former;
    for (int i = 0; i < 1000; ++i) {
        former.insert(arena.allocate(64));
    }
    for (int round = 0; round < 3; ++round) {
        arena.clear();
        for (int i = 0; i < 1000; ++i) {
            ASSERT_EQ(former.count(arena.allocate(64)), 1U) << "text " << i;
        }
    }
}

TEST(TextArenaTest, ClearedArenaSkipsBlocksThatAreTooSmall) {
    TextArena arena;
    const char* const small = arena.allocate(10);
    arena.clear();
    EXPECT_NE(arena.allocate(5000), small);
    arena.clear();
    Texts texts;
    texts.add(arena, 5000);
    texts.add(arena, 10);
    texts.expectUnchanged();
}

TEST(TextArenaTest, EachTextIsFollowedByReadableBytes) {
    TextArena arena;
    std::string read;
    for (int round = 0; round < 2; ++round, arena.clear()) {
        for (const size_t size : {0U, 1U, 1023U, 1024U, 0U, 300'000U, 0U}) {
            char* const text = arena.allocate(size);
            ASSERT_NE(text, nullptr);
            std::memset(text, 'a', size + TextArena::kSlack);
            read.append(text, size + TextArena::kSlack);  // the address sanitizer watches
        }
    }
    EXPECT_EQ(read.find_first_not_of('a'), std::string::npos);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
