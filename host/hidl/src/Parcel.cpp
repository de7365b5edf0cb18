#include <hwbinder/Parcel.h>

#include <cstring>
#include <new>
#include <utility>

#include "ParcelContents.h"
#include "Wire.h"

namespace android::hardware {

namespace {

// Numbers lie at multiples of this, as on a device.
constexpr size_t kAlignment = 4;

size_t padded(size_t length) {
    return (length + kAlignment - 1) & ~(kAlignment - 1);
}

}  // namespace

Parcel::Parcel() : mContents(Contents::take()) {}
Parcel::~Parcel() {
    Contents::give(std::move(mContents));
}

const std::vector<uint8_t>& Parcel::data() const {
    return mContents->data;
}
const std::vector<Parcel::Object>& Parcel::objects() const {
    return mContents->objects;
}

// Adds a copy of the bytes, padded with zeros.
void Parcel::addNumbers(const void* bytes, size_t length) {
    std::vector<uint8_t>& data = mContents->data;
    const auto* first = static_cast<const uint8_t*>(bytes);
    data.insert(data.end(), first, first + length);
    data.insert(data.end(), padded(length) - length, 0);
    mBytes = data.data();
    mSize = data.size();
}

template <typename T>
status_t Parcel::writeAligned(T value) {
    addNumbers(&value, sizeof(T));
    return OK;
}

template <typename T>
status_t Parcel::readAligned(T* value) const {
    if (mSize - mPosition < padded(sizeof(T))) {
        return NOT_ENOUGH_DATA;
    }
    memcpy(value, mBytes + mPosition, sizeof(T));
    mPosition += padded(sizeof(T));
    return OK;
}

status_t Parcel::writeBool(bool value) {
    return writeInt8(value ? 1 : 0);
}
status_t Parcel::readBool(bool* value) const {
    int8_t number;
    const status_t status = readInt8(&number);
    if (status == OK) {
        *value = number != 0;
    }
    return status;
}

// Small numbers are sent as 32-bit ones.
status_t Parcel::writeInt8(int8_t value) {
    return writeAligned(int32_t{value});
}
status_t Parcel::writeUint8(uint8_t value) {
    return writeAligned(uint32_t{value});
}
status_t Parcel::writeInt16(int16_t value) {
    return writeAligned(int32_t{value});
}
status_t Parcel::writeUint16(uint16_t value) {
    return writeAligned(uint32_t{value});
}
status_t Parcel::writeInt32(int32_t value) {
    return writeAligned(value);
}
status_t Parcel::writeUint32(uint32_t value) {
    return writeAligned(value);
}
status_t Parcel::writeInt64(int64_t value) {
    return writeAligned(value);
}
status_t Parcel::writeUint64(uint64_t value) {
    return writeAligned(value);
}
status_t Parcel::writeFloat(float value) {
    return writeAligned(value);
}
status_t Parcel::writeDouble(double value) {
    return writeAligned(value);
}

namespace {
template <typename Wide, typename Narrow>
status_t narrow(status_t status, Wide wide, Narrow* value) {
    if (status == OK) {
        *value = static_cast<Narrow>(wide);
    }
    return status;
}
}  // namespace

status_t Parcel::readInt8(int8_t* value) const {
    int32_t wide = 0;
    const status_t status = readAligned(&wide);
    return narrow(status, wide, value);
}
status_t Parcel::readUint8(uint8_t* value) const {
    uint32_t wide = 0;
    const status_t status = readAligned(&wide);
    return narrow(status, wide, value);
}
status_t Parcel::readInt16(int16_t* value) const {
    int32_t wide = 0;
    const status_t status = readAligned(&wide);
    return narrow(status, wide, value);
}
status_t Parcel::readUint16(uint16_t* value) const {
    uint32_t wide = 0;
    const status_t status = readAligned(&wide);
    return narrow(status, wide, value);
}
status_t Parcel::readInt32(int32_t* value) const {
    return readAligned(value);
}
status_t Parcel::readUint32(uint32_t* value) const {
    return readAligned(value);
}
status_t Parcel::readInt64(int64_t* value) const {
    return readAligned(value);
}
status_t Parcel::readUint64(uint64_t* value) const {
    return readAligned(value);
}
status_t Parcel::readFloat(float* value) const {
    return readAligned(value);
}
status_t Parcel::readDouble(double* value) const {
    return readAligned(value);
}

status_t Parcel::writeCString(const char* text) {
    addNumbers(text, strlen(text) + 1);
    return OK;
}

const char* Parcel::readCString() const {
    if (mPosition == mSize) {
        return nullptr;
    }
    const auto* text = reinterpret_cast<const char*>(mBytes + mPosition);
    const size_t length = strnlen(text, mSize - mPosition);
    if (padded(length + 1) > mSize - mPosition) {
        return nullptr;
    }
    mPosition += padded(length + 1);
    return text;
}

status_t Parcel::writeInterfaceToken(const char* descriptor) {
    return writeCString(descriptor);
}

bool Parcel::enforceInterface(const char* descriptor) const {
    const size_t length = strlen(descriptor) + 1;
    if (mSize - mPosition < padded(length) || memcmp(mBytes + mPosition, descriptor, length) != 0) {
        return false;
    }
    mPosition += padded(length);
    return true;
}

status_t Parcel::refuse(status_t status) {
    if (mWriteError == OK) {
        mWriteError = status;
    }
    return status;
}

status_t Parcel::addObject(Object&& object, size_t* handle) {
    if (handle != nullptr) {
        *handle = mContents->objects.size();
    }
    mContents->objects.push_back(std::move(object));
    return OK;
}

status_t Parcel::addEmbedded(Object&& object, size_t* handle, size_t parentHandle,
                             size_t parentOffset) {
    if (parentHandle >= mContents->objects.size()) {
        return refuse(BAD_VALUE);
    }
    const Object& parent = mContents->objects[parentHandle];
    if (parent.kind != ObjectKind::BUFFER || parent.length < sizeof(uint64_t) ||
        parentOffset > parent.length - sizeof(uint64_t)) {
        return refuse(BAD_VALUE);
    }
    object.hasParent = true;
    object.parent = static_cast<uint32_t>(parentHandle);
    object.parentOffset = parentOffset;
    return addObject(std::move(object), handle);
}

namespace {
Parcel::Object bufferObject(const void* buffer, size_t length) {
    Parcel::Object object{};
    object.kind = Parcel::ObjectKind::BUFFER;
    object.isNull = buffer == nullptr;
    object.length = object.isNull ? 0 : length;
    object.bytes = const_cast<void*>(buffer);
    return object;
}
}  // namespace

status_t Parcel::writeBuffer(const void* buffer, size_t length, size_t* handle) {
    return addObject(bufferObject(buffer, length), handle);
}

status_t Parcel::writeEmbeddedBuffer(const void* buffer, size_t length, size_t* handle,
                                     size_t parentHandle, size_t parentOffset) {
    return addEmbedded(bufferObject(buffer, length), handle, parentHandle, parentOffset);
}

namespace {

bool handleIsSound(const native_handle_t* handle) {
    return handle->version == static_cast<int>(sizeof(native_handle_t)) && handle->numFds >= 0 &&
           handle->numInts >= 0 && handle->numFds <= NATIVE_HANDLE_MAX_FDS &&
           handle->numInts <= NATIVE_HANDLE_MAX_INTS;
}

Parcel::Object handleObject(const native_handle_t* handle) {
    Parcel::Object object{};
    object.kind = Parcel::ObjectKind::HANDLE;
    object.isNull = handle == nullptr;
    object.bytes = const_cast<native_handle_t*>(handle);
    if (handle != nullptr) {
        object.length = sizeof(native_handle_t) +
                        sizeof(int) * static_cast<size_t>(handle->numFds + handle->numInts);
    }
    return object;
}

}  // namespace

status_t Parcel::writeNativeHandleNoDup(const native_handle_t* handle) {
    if (handle != nullptr && !handleIsSound(handle)) {
        return refuse(BAD_VALUE);
    }
    return addObject(handleObject(handle), nullptr);
}

status_t Parcel::writeEmbeddedNativeHandle(const native_handle_t* handle, size_t parentHandle,
                                           size_t parentOffset) {
    if (handle != nullptr && !handleIsSound(handle)) {
        return refuse(BAD_VALUE);
    }
    return addEmbedded(handleObject(handle), nullptr, parentHandle, parentOffset);
}

status_t Parcel::writeStrongBinder(const sp<IBinder>& binder) {
    if (binder != nullptr && binder->localBinder() == nullptr) {
        return refuse(INVALID_OPERATION);
    }
    Object object{};
    object.kind = ObjectKind::BINDER;
    object.isNull = binder == nullptr;
    object.binder = binder;
    return addObject(std::move(object), nullptr);
}

const Parcel::Object* Parcel::nextObject(ObjectKind kind) const {
    if (mObjectPosition == mContents->objects.size() ||
        mContents->objects[mObjectPosition].kind != kind) {
        return nullptr;
    }
    return &mContents->objects[mObjectPosition++];
}

const Parcel::Object* Parcel::nextEmbedded(ObjectKind kind, size_t parentHandle,
                                           size_t parentOffset) const {
    const Object* object = nextObject(kind);
    if (object == nullptr || !object->hasParent || object->parent != parentHandle ||
        object->parentOffset != parentOffset) {
        return nullptr;
    }
    return object;
}

void Parcel::putAddress(const Object& object, const void* address) const {
    // In a parcel that is still being written the address is already there, and the buffer is the
    // caller's.
    if (!mContents->arrived) {
        return;
    }
    auto* parent = static_cast<uint8_t*>(mContents->objects[object.parent].bytes);
    const auto wide = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(address));
    memcpy(parent + object.parentOffset, &wide, sizeof(wide));
}

status_t Parcel::readBuffer(size_t length, size_t* handle, const void** buffer) const {
    const Object* object = nextObject(ObjectKind::BUFFER);
    if (object == nullptr || object->hasParent || object->isNull || object->length != length) {
        return BAD_VALUE;
    }
    *handle = mObjectPosition - 1;
    *buffer = object->bytes;
    return OK;
}

status_t Parcel::readEmbeddedBuffer(size_t length, size_t* handle, size_t parentHandle,
                                    size_t parentOffset, const void** buffer) const {
    size_t number = 0;
    const void* address = nullptr;
    const status_t status =
            readNullableEmbeddedBuffer(length, &number, parentHandle, parentOffset, &address);
    if (status != OK || address == nullptr) {
        return status != OK ? status : UNEXPECTED_NULL;
    }
    *handle = number;
    *buffer = address;
    return OK;
}

status_t Parcel::readNullableEmbeddedBuffer(size_t length, size_t* handle, size_t parentHandle,
                                            size_t parentOffset, const void** buffer) const {
    const Object* object = nextEmbedded(ObjectKind::BUFFER, parentHandle, parentOffset);
    if (object == nullptr || object->length != length) {
        return BAD_VALUE;
    }
    const void* address = length == 0 ? nullptr : object->bytes;
    putAddress(*object, address);
    *handle = mObjectPosition - 1;
    *buffer = address;
    return OK;
}

status_t Parcel::readNullableNativeHandleNoDup(const native_handle_t** handle) const {
    const Object* object = nextObject(ObjectKind::HANDLE);
    if (object == nullptr || object->hasParent) {
        return BAD_VALUE;
    }
    *handle = static_cast<const native_handle_t*>(object->bytes);
    return OK;
}

status_t Parcel::readNullableEmbeddedNativeHandle(size_t parentHandle, size_t parentOffset,
                                                  const native_handle_t** handle) const {
    const Object* object = nextEmbedded(ObjectKind::HANDLE, parentHandle, parentOffset);
    if (object == nullptr) {
        return BAD_VALUE;
    }
    putAddress(*object, object->bytes);
    *handle = static_cast<const native_handle_t*>(object->bytes);
    return OK;
}

status_t Parcel::readNullableStrongBinder(sp<IBinder>* binder) const {
    const Object* object = nextObject(ObjectKind::BINDER);
    if (object == nullptr) {
        return BAD_VALUE;
    }
    *binder = object->binder;
    return OK;
}

status_t Parcel::adopt(transport::IncomingMessage&& message) try {
    std::vector<Object>& objects = mContents->objects;
    const status_t status = transport::decodeObjects(&message, &objects);
    if (status != OK) {
        objects.clear();
        const transport::IncomingMessage gone = std::move(message);  // closes its descriptors
        return status;
    }
    mContents->message = std::move(message);
    mContents->arrived = true;
    mBytes = mContents->message.body();
    mSize = mContents->message.header().dataSize;
    mPosition = 0;
    mObjectPosition = 0;
    return OK;
} catch (const std::bad_alloc&) {
    mContents->objects.clear();
    return NO_MEMORY;
}

}  // namespace android::hardware
