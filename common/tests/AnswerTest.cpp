#include "common/Answer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <iterator>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

// As the interface's answers are: seven bytes lie between the fields.
struct GappyAnswer {
    bool success;
    int64_t value;
};
constexpr size_t kGap = offsetof(GappyAnswer, success) + sizeof(bool);
constexpr size_t kGapEnd = offsetof(GappyAnswer, value);

TEST(AnswerTest, BytesBetweenTheFieldsAreCleared) {
    alignas(GappyAnswer) unsigned char bytes[sizeof(GappyAnswer)];
    std::fill(std::begin(bytes), std::end(bytes), 0xa5);
    clearPadding(*reinterpret_cast<GappyAnswer*>(bytes));
    for (size_t i = 0; i < sizeof bytes; ++i) {
        EXPECT_EQ(bytes[i], i >= kGap && i < kGapEnd ? 0 : 0xa5) << i;
    }
}

TEST(AnswerTest, AnswerHasWhatItIsGiven) {
    for (const bool success : {false, true}) {
        int calls = 0;
        const std::function<void(const GappyAnswer&)> callback = [&](const GappyAnswer& answer) {
            ++calls;
            EXPECT_EQ(answer.success, success);
            EXPECT_EQ(answer.value, -7);
            unsigned char bytes[sizeof answer];
            memcpy(bytes, &answer, sizeof answer);
            EXPECT_EQ(std::count(bytes + kGap, bytes + kGapEnd, 0), ptrdiff_t{kGapEnd - kGap});
        };
        answerWith(callback, success, -7);
        EXPECT_EQ(calls, 1);
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
