// Parcels: reading returns exactly what was written, before and after the parcel is sent.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/HidlBinderSupport.h>
#include <hwbinder/Parcel.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "Native.h"
#include "Travel.h"
#include "host/hidl/src/Wire.h"

namespace mlk::test {
namespace {

using ::android::BAD_VALUE;
using ::android::INVALID_OPERATION;
using ::android::NOT_ENOUGH_DATA;
using ::android::OK;
using ::android::sp;
using ::android::hardware::IBinder;
using ::android::hardware::Parcel;

// Runs each test twice: with the parcel that was written, and with the one that arrived.
class ParcelTest : public ::testing::TestWithParam<bool> {
  protected:
    const Parcel& read() {
        if (!GetParam()) {
            return mWritten;
        }
        EXPECT_EQ(travel(mWritten, &mArrived), OK);
        return mArrived;
    }
    Parcel mWritten;

  private:
    Parcel mArrived;
};
INSTANTIATE_TEST_SUITE_P(Way, ParcelTest, ::testing::Bool(), [](const auto& travelled) {
    return std::string(travelled.param ? "Arrived" : "Written");
});

template <typename T, typename Write, typename Read>
void expectNumber(T value, Write write, Read read, bool travels) {
    Parcel written;
    ASSERT_EQ((written.*write)(value), OK);
    Parcel other;
    ASSERT_EQ(travels ? travel(written, &other) : OK, OK);
    const Parcel& parcel = travels ? other : written;
    T got{};
    EXPECT_EQ((parcel.*read)(&got), OK);
    EXPECT_EQ(value, got);
    EXPECT_EQ((parcel.*read)(&got), NOT_ENOUGH_DATA);
    EXPECT_EQ(value, got);  // an error leaves the output unchanged
}

template <typename T>
constexpr T kLeast = std::numeric_limits<T>::lowest();
template <typename T>
constexpr T kMost = std::numeric_limits<T>::max();

TEST_P(ParcelTest, NumbersOfEveryKind) {
    const bool travels = GetParam();
    expectNumber(true, &Parcel::writeBool, &Parcel::readBool, travels);
    expectNumber(kLeast<int8_t>, &Parcel::writeInt8, &Parcel::readInt8, travels);
    expectNumber(kMost<uint8_t>, &Parcel::writeUint8, &Parcel::readUint8, travels);
    expectNumber(kLeast<int16_t>, &Parcel::writeInt16, &Parcel::readInt16, travels);
    expectNumber(kMost<uint16_t>, &Parcel::writeUint16, &Parcel::readUint16, travels);
    expectNumber(kLeast<int32_t>, &Parcel::writeInt32, &Parcel::readInt32, travels);
    expectNumber(kMost<uint32_t>, &Parcel::writeUint32, &Parcel::readUint32, travels);
    expectNumber(kLeast<int64_t>, &Parcel::writeInt64, &Parcel::readInt64, travels);
    expectNumber(kMost<uint64_t>, &Parcel::writeUint64, &Parcel::readUint64, travels);
    expectNumber(kLeast<float>, &Parcel::writeFloat, &Parcel::readFloat, travels);
    expectNumber(kMost<double>, &Parcel::writeDouble, &Parcel::readDouble, travels);
}

TEST_P(ParcelTest, NumbersAndTextsInTheirOrder) {
    ASSERT_EQ(mWritten.writeInterfaceToken("a.b@1.0::IC"), OK);
    ASSERT_EQ(mWritten.writeInt8(-1), OK);
    ASSERT_EQ(mWritten.writeCString(""), OK);
    ASSERT_EQ(mWritten.writeUint64(7), OK);
    ASSERT_EQ(mWritten.writeCString("seven++"), OK);
    const Parcel& parcel = read();
    EXPECT_TRUE(parcel.enforceInterface("a.b@1.0::IC"));
    int8_t small = 0;
    EXPECT_EQ(parcel.readInt8(&small), OK);
    EXPECT_EQ(small, -1);
    EXPECT_STREQ(parcel.readCString(), "");
    uint64_t large = 0;
    EXPECT_EQ(parcel.readUint64(&large), OK);
    EXPECT_EQ(large, 7U);
    EXPECT_STREQ(parcel.readCString(), "seven++");
    EXPECT_EQ(parcel.readCString(), nullptr);
}

TEST_P(ParcelTest, AnotherInterfacesToken) {
    ASSERT_EQ(mWritten.writeInterfaceToken("a.b@1.0::IC"), OK);
    EXPECT_FALSE(read().enforceInterface("a.b@1.0::ID"));
}

TEST_P(ParcelTest, NoToken) {
    EXPECT_FALSE(read().enforceInterface("a.b@1.0::IC"));
}

TEST_P(ParcelTest, TextWithoutAnEnd) {
    ASSERT_EQ(mWritten.writeUint32(0x41414141), OK);
    EXPECT_EQ(read().readCString(), nullptr);
}

TEST_P(ParcelTest, Buffers) {
    const std::string bytes = "seventeen bytes..";
    size_t handle = 99;
    ASSERT_EQ(mWritten.writeBuffer(bytes.data(), bytes.size(), &handle), OK);
    EXPECT_EQ(handle, 0U);
    const Parcel& parcel = read();
    const void* got = nullptr;
    ASSERT_EQ(parcel.readBuffer(bytes.size(), &handle, &got), OK);
    EXPECT_EQ(memcmp(bytes.data(), got, bytes.size()), 0);
    EXPECT_EQ(parcel.readBuffer(1, &handle, &got), BAD_VALUE);
}

TEST_P(ParcelTest, EmbeddedBuffersAreFoundThroughTheirParent) {
    const char* text = "abcd";
    const char* slots[2] = {nullptr, text};
    size_t parent;
    size_t child;
    ASSERT_EQ(mWritten.writeBuffer(slots, sizeof(slots), &parent), OK);
    ASSERT_EQ(mWritten.writeEmbeddedBuffer(text, 5, &child, parent, 8), OK);
    const Parcel& parcel = read();
    const void* got;
    ASSERT_EQ(parcel.readBuffer(sizeof(slots), &parent, &got), OK);
    const void* bytes;
    ASSERT_EQ(parcel.readEmbeddedBuffer(5, &child, parent, 8, &bytes), OK);
    EXPECT_STREQ(static_cast<const char*>(bytes), "abcd");
    EXPECT_EQ(static_cast<const char* const*>(got)[1], bytes);
    // Reading repairs the copy that arrived, not the writer's buffers.
    EXPECT_EQ(text, slots[1]);
}

TEST_P(ParcelTest, EmptyAndNullBuffersGiveNull) {
    const uint64_t slots[2] = {0x1234, 0x5678};
    size_t parent;
    size_t child;
    ASSERT_EQ(mWritten.writeBuffer(slots, sizeof(slots), &parent), OK);
    ASSERT_EQ(mWritten.writeEmbeddedBuffer(nullptr, 0, &child, parent, 0), OK);
    ASSERT_EQ(mWritten.writeEmbeddedBuffer("", 0, &child, parent, 8), OK);
    const Parcel& parcel = read();
    const void* got;
    ASSERT_EQ(parcel.readBuffer(sizeof(slots), &parent, &got), OK);
    const void* bytes = got;
    EXPECT_EQ(parcel.readNullableEmbeddedBuffer(0, &child, parent, 0, &bytes), OK);
    EXPECT_EQ(bytes, nullptr);
    EXPECT_EQ(parcel.readNullableEmbeddedBuffer(0, &child, parent, 8, &bytes), OK);
    EXPECT_EQ(bytes, nullptr);
    // A pointer of the sender is cleared.
    EXPECT_EQ(static_cast<const uint64_t*>(got)[0], GetParam() ? 0U : 0x1234U);
}

TEST_P(ParcelTest, Handles) {
    std::vector<unique_fd> files;
    files.push_back(fileWith("content"));
    const hidl_handle handle = handleOf(std::move(files), {-3});
    ASSERT_EQ(mWritten.writeNativeHandleNoDup(handle), OK);
    ASSERT_EQ(mWritten.writeNativeHandleNoDup(nullptr), OK);
    const Parcel& parcel = read();
    const native_handle_t* got = nullptr;
    ASSERT_EQ(parcel.readNullableNativeHandleNoDup(&got), OK);
    ASSERT_NE(got, nullptr);
    EXPECT_EQ(contentOf(got->data[0]), "content");
    EXPECT_EQ((&got->data[0])[1], -3);
    ASSERT_EQ(parcel.readNullableNativeHandleNoDup(&got), OK);
    EXPECT_EQ(got, nullptr);
}

TEST_P(ParcelTest, NullInterface) {
    ASSERT_EQ(mWritten.writeStrongBinder(nullptr), OK);
    sp<IBinder> binder;
    EXPECT_EQ(read().readNullableStrongBinder(&binder), OK);
    EXPECT_EQ(binder, nullptr);
}

// A parcel leaves its memory to the next one, but no contents.
TEST(ParcelReuseTest, ANewParcelIsEmpty) {
    const int32_t number = 5;
    for (int round = 0; round < 3; ++round) {
        Parcel written;
        Parcel arrived;
        for (const Parcel* parcel : {&written, &arrived}) {
            EXPECT_TRUE(parcel->data().empty());
            EXPECT_TRUE(parcel->objects().empty());
            EXPECT_EQ(parcel->writeError(), OK);
            int32_t got;
            EXPECT_EQ(parcel->readInt32(&got), NOT_ENOUGH_DATA);
        }
        size_t handle;
        ASSERT_EQ(written.writeInt32(number), OK);
        ASSERT_EQ(written.writeBuffer(&number, sizeof(number), &handle), OK);
        EXPECT_EQ(handle, 0U);
        ASSERT_EQ(travel(written, &arrived), OK);
        EXPECT_EQ(arrived.objects().size(), 1U);
        EXPECT_EQ(written.writeEmbeddedBuffer(&number, sizeof(number), &handle, 7, 0), BAD_VALUE);
    }
}

// Writing to a parcel leaves the writer's buffers unchanged, even when the parcel reuses the memory
// of one that had arrived.
TEST(ParcelReuseTest, AWrittenParcelDoesNotTouchItsBuffers) {
    struct {
        const char* text;
    } parent{nullptr};
    const char text[] = "text";
    for (int round = 0; round < 3; ++round) {
        Parcel one;
        Parcel other;
        Parcel& written = round % 2 == 0 ? one : other;
        Parcel& arrived = round % 2 == 0 ? other : one;
        size_t handle;
        size_t embedded;
        const void* got;
        ASSERT_EQ(written.writeBuffer(&parent, sizeof(parent), &handle), OK);
        ASSERT_EQ(written.writeEmbeddedBuffer(text, sizeof(text), &embedded, handle, 0), OK);
        ASSERT_EQ(travel(written, &arrived), OK);
        ASSERT_EQ(arrived.readBuffer(sizeof(parent), &handle, &got), OK);
        ASSERT_EQ(arrived.readEmbeddedBuffer(sizeof(text), &embedded, handle, 0, &got), OK);
        ASSERT_EQ(written.readBuffer(sizeof(parent), &handle, &got), OK);
        ASSERT_EQ(written.readEmbeddedBuffer(sizeof(text), &embedded, handle, 0, &got), OK);
        EXPECT_EQ(parent.text, nullptr);
    }
}

// A destroyed parcel closes the descriptors that arrived with it.
TEST(ParcelReuseTest, DescriptorsAreClosed) {
    Pipe pipe;
    {
        Parcel written;
        Parcel arrived;
        native_handle_t* const handle = native_handle_create(1, 0);
        handle->data[0] = pipe.in.get();
        EXPECT_EQ(written.writeNativeHandleNoDup(handle), OK);
        EXPECT_EQ(travel(written, &arrived), OK);
        (void)native_handle_delete(handle);
        pipe.in.reset();
    }
    char byte;
    EXPECT_EQ(read(pipe.out.get(), &byte, 1), 0);  // no writer is left
}

TEST(ParcelErrorTest, AStatusArrivesWithItsMessage) {
    using ::android::hardware::Status;
    Parcel sent;
    const Status status = Status::fromExceptionCode(Status::EX_ILLEGAL_STATE, "not now");
    EXPECT_EQ(::android::hardware::writeToParcel(status, &sent), OK);
    Parcel arrived;
    ASSERT_EQ(travel(sent, &arrived), OK);
    Status read;
    EXPECT_EQ(::android::hardware::readFromParcel(&read, arrived), OK);
    EXPECT_EQ(read.description(), "Status(EX_ILLEGAL_STATE): 'not now'");
}

TEST(ParcelErrorTest, RemoteObjectIsRefused) {
    class Remote : public IBinder {
        ::android::status_t transact(uint32_t, const Parcel&, Parcel*, uint32_t,
                                     TransactCallback) override {
            return OK;
        }
        ::android::status_t linkToDeath(const sp<DeathRecipient>&) override { return OK; }
        ::android::status_t unlinkToDeath(const ::android::wp<DeathRecipient>&) override {
            return OK;
        }
    };
    Parcel parcel;
    EXPECT_EQ(parcel.writeStrongBinder(new Remote), INVALID_OPERATION);
    EXPECT_EQ(parcel.writeError(), INVALID_OPERATION);
    size_t handle;
    EXPECT_NE(parcel.writeEmbeddedBuffer("", 1, &handle, 7, 0), INVALID_OPERATION);
    EXPECT_EQ(parcel.writeError(), INVALID_OPERATION) << "the first error counts";
}

// Makes a call at the end of the process, after the main thread's thread-local objects are gone.
class CallerAtTheEnd {
  public:
    ~CallerAtTheEnd() {
        ::android::hardware::transport::IncomingMessage message;
        Parcel parcel;
        int32_t value = 0;
        if (parcel.writeInt32(7) != OK || parcel.readInt32(&value) != OK || value != 7 ||
            !message.reserve(100, 0)) {
            _exit(1);
        }
    }
};

TEST(ParcelDeathTest, StaticObjectsMayUseParcelsWhenTheyEnd) {
    EXPECT_EXIT(
            {
                static const CallerAtTheEnd caller;
                {
                    // Leaves memory for later parcels.
                    const Parcel parcel;
                    ::android::hardware::transport::IncomingMessage message;
                    message.reserve(1000, 0);
                }
                exit(0);
            },
            ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace mlk::test
