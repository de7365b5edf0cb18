// The format of a message on a socket, and its conversion from and to a parcel.
//
// A message is a Header and a body: the parcel's numbers, a WireObject for each of its objects, and
// the bytes of the buffers and handles in the same order, each part padded to eight bytes. It is
// sent as one packet or, if it is long, as several; no packet has bytes of two messages.
// Descriptors go with the first byte, in the order of the handles and interfaces that they belong
// to. A header of the type DESCRIPTORS comes before such a message: most messages have none, and
// receiving without them is cheaper. Descriptors that nobody announced never reach the process.
// Numbers have the machine's byte order, because both ends are on one machine.
#pragma once

#include <android-base/unique_fd.h>
#include <hwbinder/Parcel.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "Socket.h"

namespace android::hardware::transport {

enum class MessageType : uint32_t {
    CALL = 1,
    ONEWAY_CALL = 2,
    REPLY = 3,
    DESCRIPTORS = 4,  // the next message may have descriptors
};

struct Header {
    static constexpr uint32_t kMagic = 0x314b4c4d;  // "MLK1"
    uint32_t magic;
    MessageType type;
    uint32_t code;  // of a call: the method; of a reply: the transport's status_t
    uint32_t dataSize;
    uint32_t objectCount;
    uint32_t fdCount;
    uint64_t bodySize;
};
static_assert(sizeof(Header) == 32);

struct WireObject {
    static constexpr uint32_t kIsNull = 1;
    static constexpr uint32_t kHasParent = 2;
    uint32_t kind;
    uint32_t flags;
    uint32_t parent;
    uint32_t padding;
    uint64_t parentOffset;
    uint64_t length;
};
static_assert(sizeof(WireObject) == 32);

/**
 * The first packet that a server sends on every connection that it takes; it closes one that it
 * refuses without a packet. `server` tells two servers of one name apart.
 */
struct Hello {
    static constexpr uint32_t kMagic = 0x484b4c4d;  // "MLKH"
    static constexpr uint32_t kVersion = 1;
    uint32_t magic;
    uint32_t version;
    uint64_t server;
};
static_assert(sizeof(Hello) == 16);

/**
 * A larger call fails with FAILED_TRANSACTION, as on a device, where calls and replies share a
 * block of one megabyte. Replies may be larger here because they deliver files.
 */
constexpr uint64_t kMaxCallBody = 1024 * 1024 - 8192;
constexpr uint64_t kMaxReplyBody = 256ULL * 1024 * 1024;
/**
 * The largest reply that a device is sure to deliver; above it a device answers FAILED_TRANSACTION.
 */
constexpr uint64_t kDeviceReplyBody = 1'040'000;

/** The largest number of descriptors that the kernel passes at once. */
constexpr size_t kMaxDescriptors = 253;

/**
 * A whole message that arrived: its bytes, beginning with the header, and its descriptors. It
 * leaves its memory to the next message on the same thread unless it is large.
 */
struct IncomingMessage {
    IncomingMessage() = default;
    /** Leaves the other message as if newly constructed. */
    IncomingMessage(IncomingMessage&& other) noexcept
        : bytes(std::move(other.bytes)),
          capacity(std::exchange(other.capacity, 0)),
          descriptors(std::move(other.descriptors)) {}
    IncomingMessage& operator=(IncomingMessage&& other) noexcept {
        bytes = std::move(other.bytes);
        capacity = std::exchange(other.capacity, 0);
        descriptors = std::move(other.descriptors);
        return *this;
    }
    ~IncomingMessage();

    /**
     * Ensures a capacity of `wanted` bytes and keeps the first `filled`. False when memory runs
     * out: the other end chooses the length, so a failure must not end this process.
     */
    bool reserve(size_t wanted, size_t filled);
    /** Allocates exactly `wanted` bytes for a message that has none. */
    bool reserveExactly(size_t wanted);

    std::unique_ptr<uint8_t[]> bytes;
    size_t capacity = 0;
    std::vector<unique_fd> descriptors;

    const Header& header() const { return *reinterpret_cast<const Header*>(bytes.get()); }
    uint8_t* body() const { return bytes.get() + sizeof(Header); }
};

/**
 * A message to send. It refers to the parcel it was made from and to the parcel's buffers. Pointers
 * to buffers and descriptor numbers are zero in the message: the receiver fills in its own, and
 * those of this process must not leak.
 */
class OutgoingMessage {
  public:
    /**
     * OK; FAILED_TRANSACTION when the body exceeds the limit or has too many descriptors; the
     * parcel's own error when writing it failed; an errno as a status when an interface cannot be
     * sent.
     */
    status_t encode(const Parcel& parcel, MessageType type, uint32_t code, uint64_t bodyLimit);
    /** Encodes a reply without a parcel. */
    void encodeStatus(status_t status);

    /** The size of the body in bytes. */
    uint64_t bodySize() const { return mBodySize; }
    /** The bytes to send; valid until the next encode or finish. */
    Sending& sending() { return mSending; }
    /**
     * Call it when the message is sent or never will be. Closes the descriptors that the message
     * owns: while they are open here, an object that was handed out could not see its client go.
     * Also frees the memory of a large message.
     */
    void finish();

  private:
    void clear();
    void addPiece(const void* bytes, size_t length);
    status_t addDescriptors(const Parcel::Object& object);
    // Decides which objects are copied; returns the padded size of the others.
    uint64_t chooseCopies(const std::vector<Parcel::Object>& objects);
    // small: the size of everything that is copied.
    void layOut(const Header& header, const std::vector<uint8_t>& data,
                const std::vector<Parcel::Object>& objects, size_t small);

    std::vector<uint8_t> mSmall;  // copies of small parts, with their padding; kept unless large
    // Whether an object is copied, and where its copy is.
    struct Copy {
        bool made;
        uint8_t* bytes;
    };
    std::vector<Copy> mCopies;
    uint64_t mBodySize = 0;
    Sending mSending;  // its descriptors are borrowed from the parcel or from mHandedOut
    std::vector<unique_fd> mHandedOut;  // ends of connections to interfaces in the parcel
};

/**
 * Decodes the objects of a message. Their places, lengths and parents are then those of a
 * well-formed parcel, and the handles contain their descriptors. Reading restores the pointers
 * between buffers. BAD_VALUE when anything is out of bounds, descriptors are missing or left over,
 * or an interface's descriptor is not a socket; objects is then undefined.
 */
status_t decodeObjects(IncomingMessage* message, std::vector<Parcel::Object>* objects);

constexpr uint64_t alignedToEight(uint64_t length) {
    return (length + 7) & ~uint64_t{7};
}

}  // namespace android::hardware::transport
