#include "Wire.h"

#include <cstring>
#include <new>
#include <utility>

#include "RemoteBinder.h"
#include "ServerConnection.h"

namespace android::hardware::transport {

namespace {

constexpr uint8_t kZeros[8] = {};
// Blocks up to this size are copied together: one large piece is sent faster than many small ones.
constexpr size_t kSmallBlock = 2048;
// Memory beyond this size is not kept for the next message.
constexpr size_t kKeptCapacity = size_t{64} * 1024;
constexpr size_t kHandleHeader = sizeof(native_handle_t);

// A thread's spare is destroyed before static objects, whose destructors may still make calls. This
// flag has no destructor, so it can be read even then.
thread_local bool tSpareIsGone = false;

// The memory of a destroyed message.
struct Memory {
    std::unique_ptr<uint8_t[]> bytes;
    size_t capacity = 0;
};
struct Spare : Memory {
    ~Spare() { tSpareIsGone = true; }
};
thread_local Spare tSpare;

size_t handleLength(const native_handle_t* handle) {
    return kHandleHeader + sizeof(int) * static_cast<size_t>(handle->numFds + handle->numInts);
}

}  // namespace

IncomingMessage::~IncomingMessage() {
    if (bytes == nullptr || capacity > kKeptCapacity || tSpareIsGone) {
        return;
    }
    Memory& spare = tSpare;
    if (capacity > spare.capacity) {
        spare = {std::move(bytes), capacity};
    }
}

bool IncomingMessage::reserve(size_t wanted, size_t filled) {
    if (capacity >= wanted) {
        return true;
    }
    Memory larger;
    if (!tSpareIsGone) {
        larger = std::exchange<Memory>(tSpare, {});
    }
    if (larger.capacity < wanted) {
        larger = {std::unique_ptr<uint8_t[]>(new (std::nothrow) uint8_t[wanted]), wanted};
    }
    if (larger.bytes == nullptr) {
        return false;
    }
    if (filled != 0) {
        memcpy(larger.bytes.get(), bytes.get(), filled);
    }
    bytes = std::move(larger.bytes);
    capacity = larger.capacity;
    return true;
}

bool IncomingMessage::reserveExactly(size_t wanted) {
    bytes.reset(new (std::nothrow) uint8_t[wanted]);
    capacity = bytes == nullptr ? 0 : wanted;
    return bytes != nullptr;
}

void OutgoingMessage::addPiece(const void* bytes, size_t length) {
    if (length == 0) {
        return;
    }
    mSending.pieces.push_back({const_cast<void*>(bytes), length});
}

void OutgoingMessage::clear() {
    mSending.clear();
    mHandedOut.clear();
}

void OutgoingMessage::finish() {
    clear();
    if (mSmall.capacity() <= kKeptCapacity) {
        return;
    }
    std::vector<uint8_t>().swap(mSmall);
    std::vector<Copy>().swap(mCopies);
    std::vector<iovec>().swap(mSending.pieces);
}

status_t OutgoingMessage::addDescriptors(const Parcel::Object& object) {
    if (object.isNull || object.kind == Parcel::ObjectKind::BUFFER) {
        return OK;
    }
    if (object.kind == Parcel::ObjectKind::HANDLE) {
        const auto* handle = static_cast<const native_handle_t*>(object.bytes);
        const int* first = &handle->data[0];
        mSending.descriptors.insert(mSending.descriptors.end(), first, first + handle->numFds);
        return OK;
    }
    unique_fd end;
    const status_t status = ServerConnection::open(object.binder->localBinder(), &end);
    if (status != OK) {
        return status;
    }
    mSending.descriptors.push_back(end.get());
    mHandedOut.push_back(std::move(end));
    return OK;
}

status_t OutgoingMessage::encode(const Parcel& parcel, MessageType type, uint32_t code,
                                 uint64_t bodyLimit) {
    clear();
    if (parcel.writeError() != OK) {
        return parcel.writeError();
    }
    const std::vector<uint8_t>& data = parcel.data();
    const std::vector<Parcel::Object>& objects = parcel.objects();
    uint64_t body = alignedToEight(data.size()) + objects.size() * sizeof(WireObject);
    for (const Parcel::Object& object : objects) {
        body += alignedToEight(object.length);
    }
    if (body > bodyLimit) {
        return FAILED_TRANSACTION;
    }
    const uint64_t apart = chooseCopies(objects);
    for (const Parcel::Object& object : objects) {
        const status_t status = addDescriptors(object);
        if (status != OK) {
            return status;
        }
    }
    if (mSending.descriptors.size() > kMaxDescriptors) {
        return FAILED_TRANSACTION;
    }
    const Header header{Header::kMagic,
                        type,
                        code,
                        static_cast<uint32_t>(data.size()),
                        static_cast<uint32_t>(objects.size()),
                        static_cast<uint32_t>(mSending.descriptors.size()),
                        body};
    layOut(header, data, objects, sizeof(Header) + body - apart);
    return OK;
}

uint64_t OutgoingMessage::chooseCopies(const std::vector<Parcel::Object>& objects) {
    mCopies.clear();
    uint64_t apart = 0;
    for (const Parcel::Object& object : objects) {
        const bool large = object.length > kSmallBlock;
        const bool copied = !large || object.kind == Parcel::ObjectKind::HANDLE;
        mCopies.push_back({copied, nullptr});
        if (!copied) {
            apart += alignedToEight(object.length);
        }
        // The parent holds the object's address, which must be cleared in a copy.
        if (!object.hasParent || mCopies[object.parent].made) {
            continue;
        }
        mCopies[object.parent].made = true;
        apart -= alignedToEight(objects[object.parent].length);
    }
    return apart;
}

void OutgoingMessage::encodeStatus(status_t status) {
    clear();
    const Header header{
            Header::kMagic, MessageType::REPLY, static_cast<uint32_t>(status), 0, 0, 0, 0};
    layOut(header, {}, {}, sizeof(Header));
}

namespace {

WireObject recordOf(const Parcel::Object& object) {
    const uint32_t flags = (object.isNull ? WireObject::kIsNull : 0) |
                           (object.hasParent ? WireObject::kHasParent : 0);
    return {static_cast<uint32_t>(object.kind),
            flags,
            object.parent,
            0,
            object.parentOffset,
            object.length};
}

// Clears this process's descriptor numbers in the copy of a handle.
void clearDescriptors(const Parcel::Object& object, uint8_t* copy) {
    const auto* handle = static_cast<const native_handle_t*>(object.bytes);
    memset(copy + kHandleHeader, 0, sizeof(int) * static_cast<size_t>(handle->numFds));
}

}  // namespace

void OutgoingMessage::layOut(const Header& header, const std::vector<uint8_t>& data,
                             const std::vector<Parcel::Object>& objects, size_t small) {
    // Small parts share one copy, which must not move once the first piece points into it.
    if (mSmall.size() < small) {
        mSmall.resize(small);
    }
    uint8_t* end = mSmall.data();
    uint8_t* pieceStart = end;
    const auto copy = [&](const void* bytes, size_t length) {
        if (length == 0) {
            return;
        }
        const size_t padded = alignedToEight(length);
        if (padded != length) {
            memcpy(end + padded - sizeof(kZeros), kZeros, sizeof(kZeros));
        }
        memcpy(end, bytes, length);
        end += padded;
    };
    const auto endPiece = [&] {
        addPiece(pieceStart, static_cast<size_t>(end - pieceStart));
        pieceStart = end;
    };
    mBodySize = header.bodySize;
    copy(&header, sizeof(header));
    copy(data.data(), data.size());
    for (const Parcel::Object& object : objects) {
        const WireObject record = recordOf(object);
        copy(&record, sizeof(record));
    }
    for (size_t i = 0; i < objects.size(); ++i) {
        const Parcel::Object& object = objects[i];
        if (object.hasParent) {
            memset(mCopies[object.parent].bytes + object.parentOffset, 0, sizeof(uint64_t));
        }
        if (mCopies[i].made) {
            mCopies[i].bytes = end;
            copy(object.bytes, object.length);
            const bool isHandle = object.kind == Parcel::ObjectKind::HANDLE && !object.isNull;
            if (isHandle) {
                clearDescriptors(object, mCopies[i].bytes);
            }
            continue;
        }
        endPiece();
        addPiece(object.bytes, object.length);
        addPiece(kZeros, alignedToEight(object.length) - object.length);
    }
    endPiece();
}

namespace {

// Walks through the body of a message, never past its end.
class BodyCursor {
  public:
    BodyCursor(uint8_t* bytes, uint64_t size) : mBytes(bytes), mLeft(size) {}
    // Returns the next part and skips its padding; null when the body is too short.
    uint8_t* take(uint64_t length) {
        if (length > mLeft || alignedToEight(length) > mLeft) {
            return nullptr;
        }
        uint8_t* part = mBytes;
        mBytes += alignedToEight(length);
        mLeft -= alignedToEight(length);
        return part;
    }
    bool atEnd() const { return mLeft == 0; }

  private:
    uint8_t* mBytes;
    uint64_t mLeft;
};

bool parentIsSound(const WireObject& record, const std::vector<Parcel::Object>& earlier) {
    if (record.parent >= earlier.size()) {
        return false;
    }
    const Parcel::Object& parent = earlier[record.parent];
    return parent.kind == Parcel::ObjectKind::BUFFER && !parent.isNull &&
           record.parentOffset % alignof(void*) == 0 && parent.length >= sizeof(uint64_t) &&
           record.parentOffset <= parent.length - sizeof(uint64_t);
}

// Checks that a handle's counts match its length, and stores its descriptors.
bool takeHandle(uint8_t* bytes, uint64_t length, std::vector<unique_fd>* descriptors,
                size_t* nextDescriptor) {
    if (length < kHandleHeader) {
        return false;
    }
    auto* handle = reinterpret_cast<native_handle_t*>(bytes);
    if (handle->version != static_cast<int>(kHandleHeader) || handle->numFds < 0 ||
        handle->numInts < 0 || handle->numFds > NATIVE_HANDLE_MAX_FDS ||
        handle->numInts > NATIVE_HANDLE_MAX_INTS || handleLength(handle) != length) {
        return false;
    }
    const auto count = static_cast<size_t>(handle->numFds);
    if (count > descriptors->size() - *nextDescriptor) {
        return false;
    }
    int* slots = &handle->data[0];
    for (size_t i = 0; i < count; ++i) {
        slots[i] = (*descriptors)[(*nextDescriptor)++].get();
    }
    return true;
}

// Appends the object of a record, whose bytes and descriptors are the next ones of the message.
// False if the record does not fit them.
bool decodeObject(const WireObject& record, IncomingMessage* message, BodyCursor* body,
                  size_t* nextDescriptor, std::vector<Parcel::Object>* objects) {
    const bool hasParent = (record.flags & WireObject::kHasParent) != 0;
    if (hasParent && !parentIsSound(record, *objects)) {
        return false;
    }
    Parcel::Object& object = objects->emplace_back();
    object.kind = static_cast<Parcel::ObjectKind>(record.kind);
    object.isNull = (record.flags & WireObject::kIsNull) != 0;
    object.hasParent = hasParent;
    object.parent = record.parent;
    object.parentOffset = record.parentOffset;
    object.length = record.length;
    switch (object.kind) {
        case Parcel::ObjectKind::BUFFER:
        case Parcel::ObjectKind::HANDLE:
            if (object.isNull) {
                return object.length == 0;
            }
            object.bytes = body->take(object.length);
            return object.bytes != nullptr &&
                   (object.kind == Parcel::ObjectKind::BUFFER ||
                    takeHandle(static_cast<uint8_t*>(object.bytes), object.length,
                               &message->descriptors, nextDescriptor));
        case Parcel::ObjectKind::BINDER:
            if (object.length != 0 || object.hasParent) {
                return false;
            }
            if (object.isNull) {
                return true;
            }
            if (*nextDescriptor == message->descriptors.size() ||
                !isPacketSocket(message->descriptors[*nextDescriptor].get())) {
                return false;
            }
            object.binder = RemoteBinder::fromConnection(
                    std::move(message->descriptors[(*nextDescriptor)++]));
            return true;
        default:
            return false;
    }
}

}  // namespace

status_t decodeObjects(IncomingMessage* message, std::vector<Parcel::Object>* objects) {
    const Header& header = message->header();
    if (message->descriptors.size() != header.fdCount) {
        return BAD_VALUE;
    }
    BodyCursor body(message->body(), header.bodySize);
    if (body.take(header.dataSize) == nullptr) {
        return BAD_VALUE;
    }
    const auto* records = reinterpret_cast<const WireObject*>(
            body.take(uint64_t{header.objectCount} * sizeof(WireObject)));
    if (records == nullptr) {
        return BAD_VALUE;
    }
    objects->clear();
    objects->reserve(header.objectCount);
    size_t nextDescriptor = 0;
    for (uint32_t i = 0; i < header.objectCount; ++i) {
        if (!decodeObject(records[i], message, &body, &nextDescriptor, objects)) {
            return BAD_VALUE;
        }
    }
    return body.atEnd() && nextDescriptor == message->descriptors.size() ? OK : BAD_VALUE;
}

}  // namespace android::hardware::transport
