#include "common/TextHash.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

TEST(TextHashTest, DependsOnEveryByteTheSizeAndTheSeed) {
    const uint64_t seed = hashText("[SECTION]", 0);
    for (size_t size = 0; size < 40; ++size) {
        const std::string text(size, 'x');
        std::set<uint64_t> hashes = {hashText(text, 0), hashText(text, seed),
                                     hashText(text + "x", 0)};
        std::set<uint32_t> shortHashes;
        for (const uint64_t hash : hashes) {
            shortHashes.insert(shortHash(hash));
        }
        for (size_t i = 0; i < size; ++i) {
            std::string other = text;
            other[i] = 'y';
            hashes.insert(hashText(other, 0));
            shortHashes.insert(shortHash(hashText(other, 0)));
        }
        EXPECT_EQ(hashes.size(), size + 3) << size;
        EXPECT_EQ(shortHashes.size(), size + 3) << size;
    }
}

// Tables begin their search at the uppermost bits.
TEST(TextHashTest, TheUppermostBitsDependOnEveryByte) {
    for (size_t size = 1; size < 24; ++size) {
        for (size_t i = 0; i < size; ++i) {
            std::string text(size, 'x');
            std::set<uint32_t> uppermost;
            for (int byte = 0; byte < 256; ++byte) {
                text[i] = static_cast<char>(byte);
                uppermost.insert(shortHash(hashText(text, 0)) >> 24U);
            }
            // Random ones would have about 162 of the 256 values; those of some bytes have fewer,
            // in some processes only two dozen.
            EXPECT_GT(uppermost.size(), 8U) << size << " " << i;
        }
    }
}

TEST(TextHashTest, ReadsNothingBesideTheText) {
    // The bytes around a text must not count. The address sanitizer reports if any of them is read.
    for (size_t size = 0; size < 40; ++size) {
        const std::unique_ptr<char[]> exact(new char[size]);
        std::string text;
        for (size_t i = 0; i < size; ++i) {
            exact[i] = static_cast<char>('a' + i % 26);
            text += exact[i];
        }
        const std::string surrounded = "<" + text + ">";
        const uint64_t hash = hashText({exact.get(), size}, 7);
        EXPECT_EQ(hashText(text, 7), hash);
        EXPECT_EQ(hashText(std::string_view(surrounded).substr(1, size), 7), hash) << size;
    }
}

// Whoever knows what hashes begin with can choose texts that all have one hash.
TEST(TextHashTest, NoTextsAreChosenToHaveOneHash) {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
    constexpr uint64_t kInverse = 0xF1DE83E19937733D;
    static_assert(kOdd * kInverse == 1);
    std::set<uint32_t> hashes;
    constexpr uint32_t kTexts = 10'000;
    for (uint64_t i = 0; i < kTexts; ++i) {
        constexpr uint64_t kOfTheSize = 8 * kOdd;
        const uint64_t text = (uint64_t{0xABCDEF12} << 32 | i) * kInverse;
        const uint64_t bytes = text ^ kOfTheSize ^ kOfTheSize >> 29U;
        hashes.insert(
                shortHash(hashText({reinterpret_cast<const char*>(&bytes), sizeof bytes}, 0)));
    }
    EXPECT_GT(hashes.size(), kTexts / 2);
}

TEST(TextHashTest, SpreadsNumberedNames) {
    std::set<uint32_t> hashes;
    for (int i = 0; i < 10'000; ++i) {
        hashes.insert(shortHash(hashText("PARAMETER_" + std::to_string(i), 0)) >> 16U);
    }
    // Random ones would hit about 9,270 of the 65,536 slots.
    EXPECT_GT(hashes.size(), 8'500U);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
