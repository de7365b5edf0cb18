#include "common/ByteBlock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

TEST(ByteBlockTest, HasABitForEachByteThatIsTheSymbol) {
    for (size_t at = 0; at < ByteBlock::kBytes; ++at) {
        for (const char symbol : {'\n', '\0', '\x7F', '\x80', '\xFF'}) {
            std::string text(ByteBlock::kBytes, 'a');
            text[at] = symbol;
            EXPECT_EQ(ByteBlock(text.data()).where(symbol), uint64_t{1} << at);
            EXPECT_EQ(ByteBlock(text.data()).where('a'), ~(uint64_t{1} << at));
        }
    }
    const std::string all(ByteBlock::kBytes, '=');
    EXPECT_EQ(ByteBlock(all.data()).where('='), UINT64_MAX);
    EXPECT_EQ(ByteBlock(all.data()).where('#'), 0U);
}

TEST(ByteBlockTest, ReadsNoMoreThanItsBytes) {
    const std::string text = std::string(ByteBlock::kBytes, 'a') + "=";
    const std::unique_ptr<char[]> exact(new char[ByteBlock::kBytes]);  // for a sanitizer
    text.copy(exact.get(), ByteBlock::kBytes);
    EXPECT_EQ(ByteBlock(exact.get()).where('='), 0U);
}

TEST(ByteBlockTest, BitsBeforeANumberOfBytes) {
    EXPECT_EQ(ByteBlock::before(0), 0U);
    EXPECT_EQ(ByteBlock::before(1), 1U);
    EXPECT_EQ(ByteBlock::before(63), UINT64_MAX >> 1U);
    EXPECT_EQ(ByteBlock::before(64), UINT64_MAX);
    EXPECT_EQ(ByteBlock::before(1000), UINT64_MAX);
}

TEST(ByteBlockTest, BitsBeforeTheFirst) {
    EXPECT_EQ(ByteBlock::beforeFirst(0), UINT64_MAX);
    EXPECT_EQ(ByteBlock::beforeFirst(1), 0U);
    EXPECT_EQ(ByteBlock::beforeFirst(0b10100), 0b11U);
    EXPECT_EQ(ByteBlock::beforeFirst(uint64_t{1} << 63U), UINT64_MAX >> 1U);
}

TEST(ByteBlockTest, BitsFromFirstToLast) {
    EXPECT_EQ(ByteBlock::filled(0), 0U);
    EXPECT_EQ(ByteBlock::filled(1), 1U);
    EXPECT_EQ(ByteBlock::filled(0b1000100), 0b1111100U);
    EXPECT_EQ(ByteBlock::filled(uint64_t{1} << 63U), uint64_t{1} << 63U);
    EXPECT_EQ(ByteBlock::filled(uint64_t{1} << 63U | 1U), UINT64_MAX);
}

TEST(ByteBlockTest, FirstAndEndOfBits) {
    EXPECT_EQ(ByteBlock::firstOf(0b1000100), 2U);
    EXPECT_EQ(ByteBlock::endOf(0b1000100), 7U);
    EXPECT_EQ(ByteBlock::firstOf(uint64_t{1} << 63U), 63U);
    EXPECT_EQ(ByteBlock::endOf(uint64_t{1} << 63U), 64U);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
