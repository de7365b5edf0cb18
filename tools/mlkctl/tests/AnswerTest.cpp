#include "tools/mlkctl/Answer.h"

#include <cstddef>
#include <cstring>

#include <android/log.h>
#include <cutils/native_handle.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include "host/testing/LogCapture.h"
#include "tools/mlkctl/Failure.h"

namespace mlk::ctl {

namespace {

template <typename T>
std::string printed(const T& value) {
    std::string out;
    print(out, value);
    return out;
}

// A block of memory that claims to have `size` bytes.
class Memory {
  public:
    Memory(const std::string& content, size_t size) {
        mHandle->data[0] = memfd_create("memory", MFD_CLOEXEC | MFD_ALLOW_SEALING);
        EXPECT_EQ(write(mHandle->data[0], content.data(), content.size()),
                  static_cast<ssize_t>(content.size()));
        EXPECT_EQ(fcntl(mHandle->data[0], F_ADD_SEALS, F_SEAL_SHRINK), 0);
        mMemory = hidl_memory("ashmem", mHandle, size);
    }
    ~Memory() {
        native_handle_close(mHandle);
        native_handle_delete(mHandle);
    }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    const hidl_memory& get() const { return mMemory; }

  private:
    native_handle_t* mHandle = native_handle_create(1, 0);
    hidl_memory mMemory;
};

TEST(AnswerTest, OptionalsAreObjects) {
    EXPECT_EQ(printed(V1_0::OptionalBool{true, false}), R"({"success":true,"value":false})");
    EXPECT_EQ(printed(V1_0::OptionalBool{false, true}), R"({"success":false,"value":true})");
    EXPECT_EQ(printed(V1_0::OptionalInt32{true, INT32_MIN}),
              R"({"success":true,"value":-2147483648})");
    EXPECT_EQ(printed(V1_0::OptionalString{true, "a\"\xff"}),
              R"({"success":true,"value":"a\"\udcff"})");
    EXPECT_EQ(printed(V1_0::OptionalString{false, hidl_string("a\0b", 3)}),
              R"({"success":false,"value":"a\u0000b"})");
}

TEST(AnswerTest, VectorsAreArrays) {
    EXPECT_EQ(printed(hidl_vec<hidl_string>{}), "[]");
    EXPECT_EQ(printed(hidl_vec<hidl_string>{"a", "", "\x80"}), R"(["a","",")"
                                                               "\\udc80"
                                                               R"("])");
    EXPECT_EQ(printed(hidl_vec<uint32_t>{}), "[]");
    EXPECT_EQ(printed(hidl_vec<uint32_t>{0, 4294967295U}), "[0,4294967295]");
    EXPECT_EQ(printed(hidl_vec<V1_0::ConfigKeyValue>{{"k", "v"}, {"", ""}}),
              R"([{"key":"k","value":"v"},{"key":"","value":""}])");
}

TEST(AnswerTest, ChannelsHaveTheirLabelToTheFirstNul) {
    V1_0::HidlFreqListItem item{};
    item.channel = 21;
    item.frequency = 474000;
    item.bandwidth = 8000000;
    item.modulation = 18;
    item.label[0] = 'E';
    item.label[1] = '2';
    item.label[2] = '1';
    EXPECT_EQ(printed(hidl_vec<V1_0::HidlFreqListItem>{item}),
              R"([{"channel":21,"frequency":474000,"bandwidth":8000000,"label":"E21",)"
              R"("modulation":18}])");
    item.channel = 65535;
    item.label[0] = 0;
    EXPECT_THAT(printed(item), ::testing::HasSubstr(R"({"channel":65535,)"));
    EXPECT_THAT(printed(item), ::testing::HasSubstr(R"("label":"",)"));
    // A label that fills its field has no NUL.
    for (size_t i = 0; i < item.label.size(); ++i) {
        item.label[i] = 'x';
    }
    EXPECT_THAT(printed(item), ::testing::HasSubstr(R"("label":"xxxxx",)"));
}

TEST(AnswerTest, BytesAreBase64) {
    EXPECT_EQ(printed(hidl_vec<uint8_t>{}), R"({"size":0,"base64":""})");
    EXPECT_EQ(printed(hidl_vec<uint8_t>{0, 255, 16, 1}), R"({"size":4,"base64":"AP8QAQ=="})");
    EXPECT_EQ(rawBytes(hidl_vec<uint8_t>{0, 255, 10}), std::string("\0\xff\n", 3));
}

TEST(AnswerTest, MemoryIsReadWhereverItCameFrom) {
    EXPECT_EQ(printed(hidl_memory()), R"({"size":0,"base64":""})");
    EXPECT_EQ(rawBytes(hidl_memory()), "");
    const Memory memory("foobar", 6);
    EXPECT_EQ(printed(memory.get()), R"({"size":6,"base64":"Zm9vYmFy"})");
    EXPECT_EQ(rawBytes(memory.get()), "foobar");
}

// The message of the NO_ANSWER that printing throws.
std::string refusalOf(const hidl_memory& memory) {
    try {
        return printed(memory);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::NO_ANSWER);
        return failure.what();
    }
}

TEST(AnswerTest, MemoryThatLiesKillsNobody) {
    const ::mlk::testing::LogCapture log;
    const Memory memory("foobar", 1'000'000);
    EXPECT_EQ(refusalOf(memory.get()),
              "the answer's shared memory of 1000000 bytes cannot be mapped");
    EXPECT_EQ(refusalOf(hidl_memory("ashmem", nullptr, 5)),
              "the answer's shared memory of 5 bytes cannot be mapped");
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidlmemory"),
                ::testing::ElementsAre(::testing::HasSubstr("its block has only 6 bytes"),
                                       ::testing::HasSubstr("it is empty")));
}

// The message about an answer with this byte at this place. The byte is not a truth value.
template <typename Answer>
std::string refusalOf(size_t place, uint8_t byte) {
    Answer answer{};
    std::memcpy(reinterpret_cast<char*>(&answer) + place, &byte, 1);
    try {
        checkSound(answer);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::NO_ANSWER);
        return failure.what();
    }
    return "";
}

TEST(AnswerTest, ATruthValueThatIsNoneIsNoAnswer) {
    using V1_0::OptionalBool;
    EXPECT_EQ(refusalOf<OptionalBool>(offsetof(OptionalBool, success), 1), "");
    EXPECT_EQ(refusalOf<OptionalBool>(offsetof(OptionalBool, value), 1), "");
    EXPECT_EQ(refusalOf<OptionalBool>(offsetof(OptionalBool, success), 2),
              "no answer: the service sent a truth value of 2");
    EXPECT_EQ(refusalOf<OptionalBool>(offsetof(OptionalBool, value), 255),
              "no answer: the service sent a truth value of 255");
    EXPECT_NE(refusalOf<V1_0::OptionalInt32>(0, 77), "");
    EXPECT_NE(refusalOf<V1_0::OptionalString>(0, 77), "");
}

}  // namespace

}  // namespace mlk::ctl
