// Parcel: the arguments or the answer of one call.
#pragma once

#include <cutils/native_handle.h>
#include <hidl/HostTransport.h>
#include <hwbinder/IBinder.h>
#include <utils/Errors.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace android::hardware {

namespace transport {
struct IncomingMessage;
}

// Holds numbers in the order they were written, and objects beside them: buffers, which may be
// embedded in earlier buffers, handles and interfaces.
//
// A parcel that is being written refers to the caller's buffers and copies none: they must live
// until the parcel has been sent. A parcel that arrived owns what it gives out: pointers that its
// readers return are good while it lives, and descriptors in it are closed with it.
//
// Readers trust nothing: a number that is not there, an object of another kind, length, parent or
// offset gives an error and leaves the output alone. Not thread-safe.
//
// What a parcel took of memory goes to the next one that is made on the thread where it ended,
// unless that is large: a call usually takes none.
class Parcel {
    MLK_HOST_TRANSPORT_ONLY
    // What travels beside the numbers.
    enum class ObjectKind : uint32_t { BUFFER = 1, HANDLE = 2, BINDER = 3 };
    struct Object {
        ObjectKind kind;
        bool isNull;
        bool hasParent;
        uint32_t parent;        // which earlier object this one is embedded in
        uint64_t parentOffset;  // where the pointer to this one stands in it
        uint64_t length;        // bytes of a buffer, or of a native_handle_t with its numbers
        void* bytes;            // the buffer or the native_handle_t
        sp<IBinder> binder;
    };

  public:
    Parcel();
    ~Parcel();
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;

    // Names the interface that the call is for.
    status_t writeInterfaceToken(const char* descriptor);
    // Numbers; always OK.
    status_t writeBool(bool value);
    status_t writeInt8(int8_t value);
    status_t writeUint8(uint8_t value);
    status_t writeInt16(int16_t value);
    status_t writeUint16(uint16_t value);
    status_t writeInt32(int32_t value);
    status_t writeUint32(uint32_t value);
    status_t writeInt64(int64_t value);
    status_t writeUint64(uint64_t value);
    status_t writeFloat(float value);
    status_t writeDouble(double value);
    // A NUL-terminated text, copied.
    status_t writeCString(const char* text);
    // A buffer, or null; handle receives the number by which embedded buffers name it as their
    // parent.
    status_t writeBuffer(const void* buffer, size_t length, size_t* handle);
    // A buffer whose address stands at parentOffset in the object parentHandle. BAD_VALUE when
    // there is no such place.
    status_t writeEmbeddedBuffer(const void* buffer, size_t length, size_t* handle,
                                 size_t parentHandle, size_t parentOffset);
    // A handle, or null; its descriptors stay the caller's. BAD_VALUE when it is none.
    status_t writeNativeHandleNoDup(const native_handle_t* handle);
    status_t writeEmbeddedNativeHandle(const native_handle_t* handle, size_t parentHandle,
                                       size_t parentOffset);
    // An object of this process, or null. A proxy is refused with INVALID_OPERATION: on a host an
    // object is handed out by the process it lives in.
    status_t writeStrongBinder(const sp<IBinder>& binder);

    // Whether the parcel is meant for this interface.
    bool enforceInterface(const char* descriptor) const;
    // Numbers; NOT_ENOUGH_DATA when there are none left.
    status_t readBool(bool* value) const;
    status_t readInt8(int8_t* value) const;
    status_t readUint8(uint8_t* value) const;
    status_t readInt16(int16_t* value) const;
    status_t readUint16(uint16_t* value) const;
    status_t readInt32(int32_t* value) const;
    status_t readUint32(uint32_t* value) const;
    status_t readInt64(int64_t* value) const;
    status_t readUint64(uint64_t* value) const;
    status_t readFloat(float* value) const;
    status_t readDouble(double* value) const;
    // The text, or null when there is no terminated text.
    const char* readCString() const;
    // The next object, which must be a buffer of exactly this length: BAD_VALUE when it is not.
    status_t readBuffer(size_t length, size_t* handle, const void** buffer) const;
    // The next object, which must be embedded exactly there: BAD_VALUE when it is not,
    // UNEXPECTED_NULL when it is null. When the parcel arrived, its address is put into the parent.
    status_t readEmbeddedBuffer(size_t length, size_t* handle, size_t parentHandle,
                                size_t parentOffset, const void** buffer) const;
    // The same; a null buffer, or none for length 0, gives null.
    status_t readNullableEmbeddedBuffer(size_t length, size_t* handle, size_t parentHandle,
                                        size_t parentOffset, const void** buffer) const;
    // The next object, which must be a handle, or null: BAD_VALUE when it is not.
    status_t readNullableNativeHandleNoDup(const native_handle_t** handle) const;
    status_t readNullableEmbeddedNativeHandle(size_t parentHandle, size_t parentOffset,
                                              const native_handle_t** handle) const;
    // The next object, which must be an interface, or null: BAD_VALUE when it is not.
    status_t readNullableStrongBinder(sp<IBinder>* binder) const;

    MLK_HOST_TRANSPORT_ONLY
    // For the transport: what was written so far, and the first error of writing: generated code
    // looks at none while it writes an answer, and a parcel with a gap must not travel.
    const std::vector<uint8_t>& data() const;
    const std::vector<Object>& objects() const;
    status_t writeError() const { return mWriteError; }
    // For the transport: makes this empty parcel the one that arrived. BAD_VALUE, and an empty
    // parcel, when what arrived is not a whole parcel; NO_MEMORY.
    status_t adopt(transport::IncomingMessage&& message);

  private:
    struct Contents;
    struct Spares;

    template <typename T>
    status_t writeAligned(T value);
    template <typename T>
    status_t readAligned(T* value) const;
    status_t refuse(status_t status);
    uint8_t* addNumbers(size_t length);
    status_t addObject(Object&& object, size_t* handle);
    status_t addEmbedded(Object&& object, size_t* handle, size_t parentHandle, size_t parentOffset);
    const Object* nextObject(ObjectKind kind) const;
    const Object* nextEmbedded(ObjectKind kind, size_t parentHandle, size_t parentOffset) const;
    void putAddress(const Object& object, const void* address) const;

    std::unique_ptr<Contents> mContents;  // never null
    status_t mWriteError = OK;
    const uint8_t* mBytes = nullptr;  // the numbers, written or arrived
    size_t mSize = 0;
    mutable size_t mPosition = 0;
    mutable size_t mObjectPosition = 0;
};

}  // namespace android::hardware
