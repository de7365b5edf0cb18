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
            // Random ones would have about 162 of the 256 values; those of some bytes have fewer.
            EXPECT_GT(uppermost.size(), 60U) << size << " " << i;
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
