// Parcels: what is written is read, before and after it has travelled; nothing else is.
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

// A parcel as its writer has it, and as it arrives.
class ParcelTest : public ::testing::TestWithParam<bool> {
  protected:
    const Parcel& read() {
        if (!GetParam()) return mWritten;
        EXPECT_EQ(OK, travel(mWritten, &mArrived));
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
    ASSERT_EQ(OK, (written.*write)(value));
    Parcel other;
    ASSERT_EQ(OK, travels ? travel(written, &other) : OK);
    const Parcel& parcel = travels ? other : written;
    T got{};
    EXPECT_EQ(OK, (parcel.*read)(&got));
    EXPECT_EQ(value, got);
    EXPECT_EQ(NOT_ENOUGH_DATA, (parcel.*read)(&got));
    EXPECT_EQ(value, got);  // an error leaves the output alone
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
    ASSERT_EQ(OK, mWritten.writeInterfaceToken("a.b@1.0::IC"));
    ASSERT_EQ(OK, mWritten.writeInt8(-1));
    ASSERT_EQ(OK, mWritten.writeCString(""));
    ASSERT_EQ(OK, mWritten.writeUint64(7));
    ASSERT_EQ(OK, mWritten.writeCString("seven++"));
    const Parcel& parcel = read();
    EXPECT_TRUE(parcel.enforceInterface("a.b@1.0::IC"));
    int8_t small = 0;
    EXPECT_EQ(OK, parcel.readInt8(&small));
    EXPECT_EQ(-1, small);
    EXPECT_STREQ("", parcel.readCString());
    uint64_t large = 0;
    EXPECT_EQ(OK, parcel.readUint64(&large));
    EXPECT_EQ(7U, large);
    EXPECT_STREQ("seven++", parcel.readCString());
    EXPECT_EQ(nullptr, parcel.readCString());
}

TEST_P(ParcelTest, AnotherInterfacesToken) {
    ASSERT_EQ(OK, mWritten.writeInterfaceToken("a.b@1.0::IC"));
    EXPECT_FALSE(read().enforceInterface("a.b@1.0::ID"));
}

TEST_P(ParcelTest, NoToken) {
    EXPECT_FALSE(read().enforceInterface("a.b@1.0::IC"));
}

TEST_P(ParcelTest, TextWithoutAnEnd) {
    ASSERT_EQ(OK, mWritten.writeUint32(0x41414141));
    EXPECT_EQ(nullptr, read().readCString());
}

TEST_P(ParcelTest, Buffers) {
    const std::string bytes = "seventeen bytes..";
    size_t handle = 99;
    ASSERT_EQ(OK, mWritten.writeBuffer(bytes.data(), bytes.size(), &handle));
    EXPECT_EQ(0U, handle);
    const Parcel& parcel = read();
    const void* got = nullptr;
    ASSERT_EQ(OK, parcel.readBuffer(bytes.size(), &handle, &got));
    EXPECT_EQ(0, memcmp(bytes.data(), got, bytes.size()));
    EXPECT_EQ(BAD_VALUE, parcel.readBuffer(1, &handle, &got));
}

TEST_P(ParcelTest, EmbeddedBuffersAreFoundThroughTheirParent) {
    const char* text = "abcd";
    const char* rooms[2] = {nullptr, text};
    size_t parent;
    size_t child;
    ASSERT_EQ(OK, mWritten.writeBuffer(rooms, sizeof(rooms), &parent));
    ASSERT_EQ(OK, mWritten.writeEmbeddedBuffer(text, 5, &child, parent, 8));
    const Parcel& parcel = read();
    const void* got;
    ASSERT_EQ(OK, parcel.readBuffer(sizeof(rooms), &parent, &got));
    const void* bytes;
    ASSERT_EQ(OK, parcel.readEmbeddedBuffer(5, &child, parent, 8, &bytes));
    EXPECT_STREQ("abcd", static_cast<const char*>(bytes));
    EXPECT_EQ(bytes, static_cast<const char* const*>(got)[1]);
    // Reading repairs the copy that arrived, not what the writer refers to.
    EXPECT_EQ(text, rooms[1]);
}

TEST_P(ParcelTest, EmptyAndNullBuffersGiveNull) {
    const uint64_t rooms[2] = {0x1234, 0x5678};
    size_t parent;
    size_t child;
    ASSERT_EQ(OK, mWritten.writeBuffer(rooms, sizeof(rooms), &parent));
    ASSERT_EQ(OK, mWritten.writeEmbeddedBuffer(nullptr, 0, &child, parent, 0));
    ASSERT_EQ(OK, mWritten.writeEmbeddedBuffer("", 0, &child, parent, 8));
    const Parcel& parcel = read();
    const void* got;
    ASSERT_EQ(OK, parcel.readBuffer(sizeof(rooms), &parent, &got));
    const void* bytes = got;
    EXPECT_EQ(OK, parcel.readNullableEmbeddedBuffer(0, &child, parent, 0, &bytes));
    EXPECT_EQ(nullptr, bytes);
    EXPECT_EQ(OK, parcel.readNullableEmbeddedBuffer(0, &child, parent, 8, &bytes));
    EXPECT_EQ(nullptr, bytes);
    // A pointer that the sender had there does not survive.
    EXPECT_EQ(GetParam() ? 0U : 0x1234U, static_cast<const uint64_t*>(got)[0]);
}

TEST_P(ParcelTest, Handles) {
    std::vector<unique_fd> files;
    files.push_back(fileWith("content"));
    const hidl_handle handle = handleOf(std::move(files), {-3});
    ASSERT_EQ(OK, mWritten.writeNativeHandleNoDup(handle));
    ASSERT_EQ(OK, mWritten.writeNativeHandleNoDup(nullptr));
    const Parcel& parcel = read();
    const native_handle_t* got = nullptr;
    ASSERT_EQ(OK, parcel.readNullableNativeHandleNoDup(&got));
    ASSERT_NE(nullptr, got);
    EXPECT_EQ("content", contentOf(got->data[0]));
    EXPECT_EQ(-3, (&got->data[0])[1]);
    ASSERT_EQ(OK, parcel.readNullableNativeHandleNoDup(&got));
    EXPECT_EQ(nullptr, got);
}

TEST_P(ParcelTest, NullInterface) {
    ASSERT_EQ(OK, mWritten.writeStrongBinder(nullptr));
    sp<IBinder> binder;
    EXPECT_EQ(OK, read().readNullableStrongBinder(&binder));
    EXPECT_EQ(nullptr, binder);
}

// The memory of a parcel goes to the next one, and nothing else of it does.
TEST(ParcelReuseTest, ANewParcelIsEmpty) {
    const int32_t number = 5;
    for (int round = 0; round < 3; ++round) {
        Parcel written;
        Parcel arrived;
        for (const Parcel* parcel : {&written, &arrived}) {
            EXPECT_TRUE(parcel->data().empty());
            EXPECT_TRUE(parcel->objects().empty());
            EXPECT_EQ(OK, parcel->writeError());
            int32_t got;
            EXPECT_EQ(NOT_ENOUGH_DATA, parcel->readInt32(&got));
        }
        size_t handle;
        ASSERT_EQ(OK, written.writeInt32(number));
        ASSERT_EQ(OK, written.writeBuffer(&number, sizeof(number), &handle));
        EXPECT_EQ(0U, handle);
        ASSERT_EQ(OK, travel(written, &arrived));
        EXPECT_EQ(1U, arrived.objects().size());
        EXPECT_EQ(BAD_VALUE, written.writeEmbeddedBuffer(&number, sizeof(number), &handle, 7, 0));
    }
}

// Its writer's buffers are the writer's, also where a parcel that had arrived was before.
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
        ASSERT_EQ(OK, written.writeBuffer(&parent, sizeof(parent), &handle));
        ASSERT_EQ(OK, written.writeEmbeddedBuffer(text, sizeof(text), &embedded, handle, 0));
        ASSERT_EQ(OK, travel(written, &arrived));
        ASSERT_EQ(OK, arrived.readBuffer(sizeof(parent), &handle, &got));
        ASSERT_EQ(OK, arrived.readEmbeddedBuffer(sizeof(text), &embedded, handle, 0, &got));
        ASSERT_EQ(OK, written.readBuffer(sizeof(parent), &handle, &got));
        ASSERT_EQ(OK, written.readEmbeddedBuffer(sizeof(text), &embedded, handle, 0, &got));
        EXPECT_EQ(nullptr, parent.text);
    }
}

// What arrived ends with its parcel: its descriptors are not kept.
TEST(ParcelReuseTest, DescriptorsAreClosed) {
    Pipe pipe;
    {
        Parcel written;
        Parcel arrived;
        native_handle_t* const handle = native_handle_create(1, 0);
        handle->data[0] = pipe.in.get();
        EXPECT_EQ(OK, written.writeNativeHandleNoDup(handle));
        EXPECT_EQ(OK, travel(written, &arrived));
        (void)native_handle_delete(handle);
        pipe.in.reset();
    }
    char byte;
    EXPECT_EQ(0, read(pipe.out.get(), &byte, 1));  // no writer is left
}

TEST(ParcelErrorTest, AStatusArrivesWithItsMessage) {
    using ::android::hardware::Status;
    Parcel sent;
    const Status status = Status::fromExceptionCode(Status::EX_ILLEGAL_STATE, "not now");
    EXPECT_EQ(OK, ::android::hardware::writeToParcel(status, &sent));
    Parcel arrived;
    ASSERT_EQ(OK, travel(sent, &arrived));
    Status read;
    EXPECT_EQ(OK, ::android::hardware::readFromParcel(&read, arrived));
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
    EXPECT_EQ(INVALID_OPERATION, parcel.writeStrongBinder(new Remote));
    EXPECT_EQ(INVALID_OPERATION, parcel.writeError());
    size_t handle;
    EXPECT_NE(INVALID_OPERATION, parcel.writeEmbeddedBuffer("", 1, &handle, 7, 0));
    EXPECT_EQ(INVALID_OPERATION, parcel.writeError()) << "the first error counts";
}

// Takes part in the end of a process after the main thread's own things have gone.
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
                    // Leaves both what later ones may use.
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
