// hidl_string, hidl_vec, hidl_array and their texts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/HidlSupport.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/testing/ProcessUsage.h"
#include "host/testing/Sanitizers.h"

namespace mlk::test {
namespace {

using ::android::hardware::hidl_array;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::testing::ElementsAre;

TEST(HidlStringTest, EmptyOnes) {
    const hidl_string rows[] = {hidl_string(), hidl_string(""), hidl_string(nullptr),
                                hidl_string(std::string()), hidl_string("abc", 0)};
    for (const hidl_string& text : rows) {
        EXPECT_TRUE(text.empty());
        EXPECT_EQ(text.size(), 0U);
        ASSERT_NE(text.c_str(), nullptr);
        EXPECT_EQ(*text.c_str(), '\0');
    }
}

TEST(HidlStringTest, CopiesItsText) {
    std::string source("a\0b", 3);
    const hidl_string text(source);
    source[0] = 'x';
    EXPECT_EQ(text.size(), 3U);
    EXPECT_EQ(std::string("a\0b", 3), std::string(text));
    EXPECT_EQ(text.c_str()[3], '\0');
    EXPECT_EQ(std::string(hidl_string("abc", 2)), "ab");
}

TEST(HidlStringTest, Assignments) {
    hidl_string text("former");
    text = "letters";
    EXPECT_EQ(text, "letters");
    text = std::string("a string");
    EXPECT_EQ(text, "a string");
    const hidl_string other("other");
    text = other;
    EXPECT_EQ(text, "other");
    EXPECT_EQ(other, "other");
    const hidl_string& itself = text;
    text = itself;
    EXPECT_EQ(text, "other");
    text = text.c_str() + 2;  // a part of itself
    EXPECT_EQ(text, "her");
    text = static_cast<const char*>(nullptr);
    EXPECT_EQ(text, "");
    text = "again";
    text.clear();
    EXPECT_TRUE(text.empty());
}

TEST(HidlStringTest, AnAssignmentFreesTheFormerText) {
    if (testing::kAddressSanitizer) {
        GTEST_SKIP() << "the sanitizer keeps freed memory";
    }
    constexpr size_t kSize = size_t{4} << 20U;
    constexpr size_t kTexts = 100;
    hidl_string text;
    const size_t before = testing::residentOf(getpid());
    for (size_t i = 0; i < kTexts; ++i) {
        text = std::string(kSize, 'x');
    }
    EXPECT_LT(testing::residentOf(getpid()), before + kTexts * kSize / 2);
}

// These tests check that a moved-from text is empty, as the class promises.
// NOLINTBEGIN(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
TEST(HidlStringTest, Moves) {
    hidl_string source("a text");
    const char* bytes = source.c_str();
    hidl_string text(std::move(source));
    EXPECT_EQ(text.c_str(), bytes);
    EXPECT_EQ(source, "");
    hidl_string third("former");
    third = std::move(text);
    EXPECT_EQ(third.c_str(), bytes);
    EXPECT_EQ(text, "");
    hidl_string& itself = third;
    third = std::move(itself);
    EXPECT_EQ(third, "a text");
}

TEST(HidlVecTest, CopiesAndMoves) {
    hidl_vec<int> source{1, 2};
    hidl_vec<int> copy(source);
    copy[0] = 9;
    EXPECT_THAT(std::vector<int>(source), ElementsAre(1, 2));
    copy = source;
    EXPECT_THAT(std::vector<int>(copy), ElementsAre(1, 2));
    const hidl_vec<int>& itself = copy;
    copy = itself;
    EXPECT_THAT(std::vector<int>(copy), ElementsAre(1, 2));
    const int* data = source.data();
    hidl_vec<int> moved(std::move(source));
    EXPECT_EQ(moved.data(), data);
    EXPECT_EQ(source.size(), 0U);
    copy = std::move(moved);
    EXPECT_EQ(copy.data(), data);
    EXPECT_EQ(moved.size(), 0U);
    copy = std::vector<int>{7};
    EXPECT_THAT(std::vector<int>(copy), ElementsAre(7));
    copy = {8, 9};
    EXPECT_THAT(std::vector<int>(copy), ElementsAre(8, 9));
}
// NOLINTEND(bugprone-use-after-move,clang-analyzer-cplusplus.Move)

TEST(HidlStringTest, RefersToATextOfSomebodyElses) {
    const char bytes[] = "outside";
    hidl_string text("former");
    text.setToExternal(bytes, 7);
    EXPECT_EQ(text.c_str(), bytes);
    const hidl_string copy(text);
    EXPECT_NE(copy.c_str(), bytes);
    EXPECT_EQ(copy, "outside");
    text.setToExternal(new char[3]{'o', 'k', '\0'}, 2, true);
    EXPECT_EQ(text, "ok");
    text.setToExternal(nullptr, 5);
    ASSERT_NE(text.c_str(), nullptr);
    EXPECT_EQ(text, "");
}

TEST(HidlStringTest, Comparisons) {
    EXPECT_EQ(hidl_string("a"), hidl_string("a"));
    EXPECT_NE(hidl_string("a"), hidl_string("b"));
    EXPECT_NE(hidl_string(std::string("a\0b", 3)), "a");
    EXPECT_LT(hidl_string("a"), hidl_string("ab"));
    EXPECT_FALSE(hidl_string("b") < hidl_string("ab"));
    std::ostringstream stream;
    stream << hidl_string("printed");
    EXPECT_EQ(stream.str(), "printed");
}

// The bytes that would be sent for a value that was constructed in used memory.
template <typename T>
std::string madeOver(char former) {
    alignas(T) char storage[sizeof(T)];
    memset(storage, former, sizeof(storage));
    T* value = new (storage) T();
    std::string bytes(storage, sizeof(storage));
    value->~T();
    return bytes;
}

TEST(PaddingTest, CarriesNothingAlong) {
    EXPECT_EQ(madeOver<hidl_string>('\x55'), madeOver<hidl_string>('\xaa'));
    EXPECT_EQ(madeOver<hidl_vec<int>>('\x55'), madeOver<hidl_vec<int>>('\xaa'));
    EXPECT_EQ(madeOver<hidl_handle>('\x55'), madeOver<hidl_handle>('\xaa'));
    EXPECT_EQ(madeOver<hidl_memory>('\x55'), madeOver<hidl_memory>('\xaa'));
}

TEST(ValuesDeathTest, LimitsOfSize) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const size_t tooLong = std::numeric_limits<uint32_t>::max();
    hidl_string text;
    EXPECT_DEATH(text.setToExternal("", tooLong), "a hidl_string holds at most 2\\^32-2 bytes");
    hidl_vec<char> bytes;
    EXPECT_DEATH(bytes.setToExternal(nullptr, tooLong + 1),
                 "a hidl_vec holds at most 2\\^32-1 elements");
}

TEST(HidlVecTest, WaysToMakeOne) {
    const std::vector<int> source{1, 2, 3};
    const auto elements = [](const hidl_vec<int>& vec) { return std::vector<int>(vec); };
    EXPECT_THAT(elements({}), ElementsAre());
    EXPECT_THAT(elements({1, 2, 3}), ElementsAre(1, 2, 3));
    EXPECT_THAT(elements(source), ElementsAre(1, 2, 3));
    EXPECT_THAT(elements(hidl_vec<int>(source.begin() + 1, source.end())), ElementsAre(2, 3));
    EXPECT_THAT(elements(hidl_vec<int>(2)), ElementsAre(0, 0));
    EXPECT_EQ(hidl_vec<int>().data(), nullptr);
}

TEST(HidlVecTest, ResizesToWhatAMessageHolds) {
    hidl_vec<hidl_string> vec(2);
    const size_t most = hidl_vec<hidl_string>::kMostBytes / sizeof(hidl_string);
    for (const size_t size : {most + 1, size_t{1} << 32U, std::numeric_limits<size_t>::max()}) {
        EXPECT_THROW(vec.resize(size), std::bad_alloc) << size;
    }
    EXPECT_EQ(vec.size(), 2U);
}

TEST(HidlVecTest, Resizes) {
    hidl_vec<std::string> vec{"a", "b", "c"};
    vec.resize(2);
    EXPECT_THAT(std::vector<std::string>(vec), ElementsAre("a", "b"));
    vec.resize(3);
    EXPECT_THAT(std::vector<std::string>(vec), ElementsAre("a", "b", ""));
    vec.resize(0);
    EXPECT_EQ(vec.size(), 0U);
}

TEST(HidlVecTest, RefersToElementsOfSomebodyElses) {
    int outside[] = {1, 2, 3};
    hidl_vec<int> vec{9};
    vec.setToExternal(outside, 3);
    vec[1] = 5;
    EXPECT_EQ(outside[1], 5);
    hidl_vec<int> copy(vec);
    copy[0] = 7;
    EXPECT_EQ(outside[0], 1);
    vec.resize(2);
    vec[0] = 7;
    EXPECT_EQ(outside[0], 1);
    vec.setToExternal(new int[1]{4}, 1, true);
    EXPECT_THAT(std::vector<int>(vec), ElementsAre(4));
}

TEST(HidlVecTest, Comparisons) {
    EXPECT_EQ((hidl_vec<int>{1, 2}), (hidl_vec<int>{1, 2}));
    EXPECT_NE((hidl_vec<int>{1, 2}), (hidl_vec<int>{1, 3}));
    EXPECT_NE((hidl_vec<int>{1, 2}), (hidl_vec<int>{1}));
    EXPECT_EQ(hidl_vec<int>(), hidl_vec<int>{});
    int sum = 0;
    for (const int element : hidl_vec<int>{1, 2, 3}) {
        sum += element;
    }
    EXPECT_EQ(sum, 6);
}

TEST(HidlArrayTest, OneDimension) {
    const int source[] = {1, 2, 3};
    hidl_array<int, 3> array(source);
    EXPECT_EQ(array.size(), 3U);
    EXPECT_EQ(array[1], 2);
    array[1] = 5;
    const hidl_array<int, 3> copy = array;
    EXPECT_EQ(copy, array);
    EXPECT_EQ((static_cast<std::array<int, 3>>(copy)), (std::array<int, 3>{1, 5, 3}));
    EXPECT_NE(copy, (hidl_array<int, 3>(std::array<int, 3>{1, 2, 3})));
    array = source;
    EXPECT_EQ(array[1], 2);
    EXPECT_EQ((hidl_array<int, 2>()[1]), 0);
}

TEST(HidlArrayTest, SeveralDimensionsInRowOrder) {
    hidl_array<int, 2, 3, 2> array;
    EXPECT_EQ(array.elementCount(), 12U);
    int next = 0;
    for (size_t i = 0; i < 2; ++i) {
        for (size_t j = 0; j < 3; ++j) {
            for (size_t k = 0; k < 2; ++k) {
                array[i][j][k] = next++;
            }
        }
    }
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(i, array.data()[i]);
    }
    const auto& constant = array;
    EXPECT_EQ(constant[1][1][1], 9);
    const std::array<std::array<std::array<int, 2>, 3>, 2> nested = array;
    EXPECT_EQ(nested[1][1][1], 9);
    EXPECT_EQ(array, (hidl_array<int, 2, 3, 2>(nested)));
}

TEST(ToStringTest, EveryKindOfValue) {
    using ::android::hardware::toString;
    EXPECT_EQ(toString(true), "true");
    EXPECT_EQ(toString(int8_t{-3}), "-3");
    EXPECT_EQ(toString(hidl_string("text")), "\"text\"");
    EXPECT_EQ(toString(hidl_vec<int>{1, 2}), "[2]{1, 2}");
    EXPECT_EQ(toString(hidl_vec<int>()), "[0]{}");
    EXPECT_EQ(toString(hidl_vec<hidl_vec<hidl_string>>{{"a"}}), "[1]{[1]{\"a\"}}");
    hidl_array<int, 2, 3> array;
    array[1][0] = 7;
    EXPECT_EQ(toString(array), "{{0, 0, 0}, {7, 0, 0}}");
    EXPECT_EQ(::android::hardware::details::toHexString(255), "0xff");
    EXPECT_EQ(::android::hardware::details::toHexString(~uint64_t{0}), "0xffffffffffffffff");
    EXPECT_EQ(toString(static_cast<const void*>(nullptr)), "0x0");
}

}  // namespace
}  // namespace mlk::test
