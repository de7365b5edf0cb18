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

/**
 * The arguments or the answer of one call. Holds numbers in the order in which they were written,
 * and objects besides: buffers, which may be embedded in earlier buffers, handles and interfaces.
 *
 * A parcel that is being written refers to the caller's buffers without copying them: they must
 * live until the parcel is sent. A parcel that arrived owns its contents: pointers that its readers
 * return are valid while it lives, and its destructor closes its descriptors.
 *
 * Readers do not trust the sender: a missing number or an object of another kind, length, parent or
 * offset is an error and leaves the output unchanged. Not thread-safe.
 *
 * A parcel leaves its memory to the next one on the same thread unless it is large, so that a call
 * usually allocates none.
 */
class Parcel {
    MLK_HOST_TRANSPORT_ONLY
    // The kinds of objects that are sent along with the numbers.
    enum class ObjectKind : uint32_t { BUFFER = 1, HANDLE = 2, BINDER = 3 };
    struct Object {
        ObjectKind kind;
        bool isNull;
        bool hasParent;
        uint32_t parent;        // the earlier object that this one is embedded in
        uint64_t parentOffset;  // offset in the parent of the pointer to this object
        uint64_t length;        // bytes of a buffer, or of a native_handle_t with its numbers
        void* bytes;            // the buffer or the native_handle_t
        sp<IBinder> binder;
    };

  public:
    Parcel();
    ~Parcel();
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;

    /** Writes the name of the interface that the call is for. */
    status_t writeInterfaceToken(const char* descriptor);
    /** Write a number; always OK. */
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
    /** Writes a copy of a NUL-terminated text. */
    status_t writeCString(const char* text);
    /**
     * Writes a buffer, or null. handle receives the number by which embedded buffers name it as
     * their parent.
     */
    status_t writeBuffer(const void* buffer, size_t length, size_t* handle);
    /**
     * Writes a buffer whose address lies at parentOffset in the object parentHandle. BAD_VALUE when
     * there is no such place.
     */
    status_t writeEmbeddedBuffer(const void* buffer, size_t length, size_t* handle,
                                 size_t parentHandle, size_t parentOffset);
    /**
     * Writes a handle, or null. Its descriptors stay the caller's. BAD_VALUE when the handle is
     * invalid.
     */
    status_t writeNativeHandleNoDup(const native_handle_t* handle);
    status_t writeEmbeddedNativeHandle(const native_handle_t* handle, size_t parentHandle,
                                       size_t parentOffset);
    /**
     * Writes an object of this process, or null. INVALID_OPERATION for a proxy: on a host only the
     * process of an object can send it.
     */
    status_t writeStrongBinder(const sp<IBinder>& binder);

    /** Whether the call is for this interface. */
    bool enforceInterface(const char* descriptor) const;
    /** Read a number; NOT_ENOUGH_DATA at the end of the numbers. */
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
    /** Returns the text, or null when no terminated text follows. */
    const char* readCString() const;
    /**
     * Reads the next object, which must be a buffer of exactly this length; otherwise BAD_VALUE.
     */
    status_t readBuffer(size_t length, size_t* handle, const void** buffer) const;
    /**
     * Reads the next object, which must be embedded exactly there; otherwise BAD_VALUE, or
     * UNEXPECTED_NULL when it is null. In a parcel that arrived, stores its address in the parent.
     */
    status_t readEmbeddedBuffer(size_t length, size_t* handle, size_t parentHandle,
                                size_t parentOffset, const void** buffer) const;
    /** The same, but null is allowed. A buffer of length 0 gives null, too. */
    status_t readNullableEmbeddedBuffer(size_t length, size_t* handle, size_t parentHandle,
                                        size_t parentOffset, const void** buffer) const;
    /** Reads the next object, which must be a handle or null; otherwise BAD_VALUE. */
    status_t readNullableNativeHandleNoDup(const native_handle_t** handle) const;
    status_t readNullableEmbeddedNativeHandle(size_t parentHandle, size_t parentOffset,
                                              const native_handle_t** handle) const;
    /** Reads the next object, which must be an interface or null; otherwise BAD_VALUE. */
    status_t readNullableStrongBinder(sp<IBinder>* binder) const;

    MLK_HOST_TRANSPORT_ONLY
    /**
     * For the transport: what was written so far, and the first error of writing. Generated code
     * checks no errors while it writes an answer, and a parcel with a gap must not be sent.
     */
    const std::vector<uint8_t>& data() const;
    const std::vector<Object>& objects() const;
    status_t writeError() const { return mWriteError; }
    /**
     * For the transport: gives this empty parcel the contents that arrived. BAD_VALUE when the
     * message is not a whole parcel, NO_MEMORY when memory runs out; the parcel then stays empty.
     */
    status_t adopt(transport::IncomingMessage&& message);

  private:
    struct Contents;
    struct Spares;

    template <typename T>
    status_t writeAligned(T value);
    template <typename T>
    status_t readAligned(T* value) const;
    status_t refuse(status_t status);
    void addNumbers(const void* bytes, size_t length);
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
