// Every error of reading and of writing a parcel.
#include <gtest/gtest.h>
#include <hwbinder/Parcel.h>

#include <functional>

#include "Native.h"
#include "Travel.h"

namespace mlk::test {
namespace {

using ::android::BAD_VALUE;
using ::android::OK;
using ::android::sp;
using ::android::status_t;
using ::android::UNEXPECTED_NULL;
using ::android::hardware::IBinder;
using ::android::hardware::Parcel;

uint64_t sSlots[4];

void writeSlots(Parcel* parcel) {
    size_t handle;
    ASSERT_EQ(parcel->writeBuffer(sSlots, sizeof(sSlots), &handle), OK);
}
void writeEmbedded(Parcel* parcel) {
    size_t handle;
    writeSlots(parcel);
    ASSERT_EQ(parcel->writeEmbeddedBuffer("abcd", 4, &handle, 0, 8), OK);
}
void writeEmbeddedNull(Parcel* parcel) {
    size_t handle;
    writeSlots(parcel);
    ASSERT_EQ(parcel->writeEmbeddedBuffer(nullptr, 4, &handle, 0, 8), OK);
}
void writeEmbeddedHandle(Parcel* parcel) {
    writeSlots(parcel);
    ASSERT_EQ(parcel->writeEmbeddedNativeHandle(nullptr, 0, 8), OK);
}

status_t readSlots(const Parcel& parcel) {
    size_t handle;
    const void* bytes;
    return parcel.readBuffer(sizeof(sSlots), &handle, &bytes);
}
std::function<status_t(const Parcel&)> embedded(size_t length, size_t parent, size_t offset) {
    return [=](const Parcel& parcel) {
        EXPECT_EQ(readSlots(parcel), OK);
        size_t handle = 77;
        const void* bytes = sSlots;
        const status_t status = parcel.readEmbeddedBuffer(length, &handle, parent, offset, &bytes);
        EXPECT_EQ(handle, 77U) << "an error leaves what the caller has";
        EXPECT_EQ(bytes, sSlots);
        return status;
    };
}
std::function<status_t(const Parcel&)> embeddedHandle(size_t parent, size_t offset) {
    return [=](const Parcel& parcel) {
        EXPECT_EQ(readSlots(parcel), OK);
        const native_handle_t* handle;
        return parcel.readNullableEmbeddedNativeHandle(parent, offset, &handle);
    };
}
status_t readHandle(const Parcel& parcel) {
    const native_handle_t* handle;
    return parcel.readNullableNativeHandleNoDup(&handle);
}
status_t readBinder(const Parcel& parcel) {
    sp<IBinder> binder;
    return parcel.readNullableStrongBinder(&binder);
}

// A written value, and a way of reading it that must fail.
struct Misread {
    const char* name;
    std::function<void(Parcel*)> write;
    std::function<status_t(const Parcel&)> read;
    status_t expected;
};

const Misread kMisreads[] = {
        {"NothingForABuffer", [](Parcel*) {}, &readSlots, BAD_VALUE},
        {"NothingForAHandle", [](Parcel*) {}, &readHandle, BAD_VALUE},
        {"NothingForAnInterface", [](Parcel*) {}, &readBinder, BAD_VALUE},
        {"BufferForAHandle", &writeSlots, &readHandle, BAD_VALUE},
        {"BufferForAnInterface", &writeSlots, &readBinder, BAD_VALUE},
        {"HandleForABuffer", [](Parcel* p) { (void)p->writeNativeHandleNoDup(nullptr); },
         &readSlots, BAD_VALUE},
        {"NullForABuffer",
         [](Parcel* p) {
             size_t handle;
             (void)p->writeBuffer(nullptr, sizeof(sSlots), &handle);
         },
         &readSlots, BAD_VALUE},
        {"EmbeddedLonger", &writeEmbedded, embedded(5, 0, 8), BAD_VALUE},
        {"EmbeddedShorter", &writeEmbedded, embedded(3, 0, 8), BAD_VALUE},
        {"EmbeddedElsewhere", &writeEmbedded, embedded(4, 0, 16), BAD_VALUE},
        {"EmbeddedInAnother", &writeEmbedded, embedded(4, 1, 8), BAD_VALUE},
        {"EmbeddedNull", &writeEmbeddedNull, embedded(0, 0, 8), UNEXPECTED_NULL},
        {"EmbeddedNullWithLength", &writeEmbeddedNull, embedded(4, 0, 8), BAD_VALUE},
        {"EmbeddedForAPlainOne", &writeEmbedded,
         [](const Parcel& p) {
             EXPECT_EQ(readSlots(p), OK);
             size_t handle;
             const void* bytes;
             return p.readBuffer(4, &handle, &bytes);
         },
         BAD_VALUE},
        {"PlainForAnEmbeddedOne",
         [](Parcel* p) {
             writeSlots(p);
             writeSlots(p);
         },
         embedded(sizeof(sSlots), 0, 0), BAD_VALUE},
        {"HandleElsewhere", &writeEmbeddedHandle, embeddedHandle(0, 16), BAD_VALUE},
        {"HandleInAnother", &writeEmbeddedHandle, embeddedHandle(1, 8), BAD_VALUE},
        {"BufferForAnEmbeddedHandle", &writeEmbedded, embeddedHandle(0, 8), BAD_VALUE},
        {"EmbeddedHandleForAPlainOne", &writeEmbeddedHandle,
         [](const Parcel& p) {
             EXPECT_EQ(readSlots(p), OK);
             return readHandle(p);
         },
         BAD_VALUE},
};

TEST(ParcelErrorsTest, ReadingOfAParcelThatIsBeingWritten) {
    for (const Misread& row : kMisreads) {
        Parcel parcel;
        row.write(&parcel);
        EXPECT_EQ(row.read(parcel), row.expected) << row.name;
    }
}

TEST(ParcelErrorsTest, ReadingOfAParcelThatArrived) {
    for (const Misread& row : kMisreads) {
        Parcel written;
        row.write(&written);
        Parcel arrived;
        ASSERT_EQ(travel(written, &arrived), OK) << row.name;
        EXPECT_EQ(row.read(arrived), row.expected) << row.name;
    }
}

// Errors of writing: each is returned, and the parcel can no longer be sent.
struct Miswrite {
    const char* name;
    std::function<status_t(Parcel*)> write;
};

status_t writeHandle(int version, int numFds, int numInts, Parcel* parcel) {
    native_handle_t* handle = native_handle_create(1, 1);
    handle->version = version;
    handle->numFds = numFds;
    handle->numInts = numInts;
    const status_t status = parcel->writeNativeHandleNoDup(handle);
    handle->version = sizeof(native_handle_t);
    (void)native_handle_delete(handle);
    return status;
}
constexpr int kVersion = sizeof(native_handle_t);

status_t writeEmbeddedAt(size_t parent, size_t offset, Parcel* parcel) {
    size_t handle;
    return parcel->writeEmbeddedBuffer("", 1, &handle, parent, offset);
}

const Miswrite kMiswrites[] = {
        {"ParentThatIsNot", [](Parcel* p) { return writeEmbeddedAt(1, 0, p); }},
        {"ParentBeyond32Bits", [](Parcel* p) { return writeEmbeddedAt(size_t{1} << 32U, 0, p); }},
        {"OffsetBeyondParent", [](Parcel* p) { return writeEmbeddedAt(0, sizeof(sSlots) - 7, p); }},
        {"HandleBeyondParent",
         [](Parcel* p) { return p->writeEmbeddedNativeHandle(nullptr, 0, sizeof(sSlots)); }},
        {"ParentThatIsAHandle",
         [](Parcel* p) {
             EXPECT_EQ(p->writeNativeHandleNoDup(nullptr), OK);
             return writeEmbeddedAt(1, 0, p);
         }},
        {"HandleOfAnotherVersion", [](Parcel* p) { return writeHandle(0, 0, 0, p); }},
        {"NegativeDescriptors", [](Parcel* p) { return writeHandle(kVersion, -1, 0, p); }},
        {"NegativeNumbers", [](Parcel* p) { return writeHandle(kVersion, 0, -1, p); }},
        {"TooManyDescriptors", [](Parcel* p) { return writeHandle(kVersion, 1025, 0, p); }},
        {"TooManyNumbers", [](Parcel* p) { return writeHandle(kVersion, 0, 1025, p); }},
};

TEST(ParcelErrorsTest, WritingFailsForGood) {
    for (const Miswrite& row : kMiswrites) {
        Parcel parcel;
        writeSlots(&parcel);
        EXPECT_EQ(parcel.writeError(), OK) << row.name;
        EXPECT_EQ(row.write(&parcel), BAD_VALUE) << row.name;
        EXPECT_EQ(parcel.writeError(), BAD_VALUE) << row.name;
        EXPECT_EQ(parcel.writeInt32(1), OK) << row.name;
        Parcel arrived;
        EXPECT_EQ(travel(parcel, &arrived), BAD_VALUE) << row.name;
    }
}

TEST(ParcelErrorsTest, TheLargestHandlesAreWritten) {
    Parcel parcel;
    EXPECT_EQ(writeHandle(kVersion, 1024, 0, &parcel), OK);
    EXPECT_EQ(writeHandle(kVersion, 0, 1024, &parcel), OK);
}

}  // namespace
}  // namespace mlk::test
