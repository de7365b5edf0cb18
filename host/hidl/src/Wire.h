// What a message looks like on a socket, and how a parcel becomes one and is made from one.
//
// A message is a Header, then its body: the parcel's numbers, a WireObject for each of its objects,
// and the bytes of the buffers and handles in the same order, each part padded to eight bytes.
// Descriptors travel beside the first byte, in the order of the handles and interfaces they belong
// to. Numbers have the machine's byte order: both ends are on one machine.
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

enum class MessageType : uint32_t { CALL = 1, ONEWAY_CALL = 2, REPLY = 3 };

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

// What a server says first on every connection. The number tells two servers of one name apart.
struct Hello {
    static constexpr uint32_t kMagic = 0x484b4c4d;  // "MLKH"
    static constexpr uint32_t kVersion = 1;
    uint32_t magic;
    uint32_t version;
    uint64_t server;
};
static_assert(sizeof(Hello) == 16);

// A call that is larger fails with FAILED_TRANSACTION, as on a device, where both share a block of
// one megabyte. Replies may be larger here: files are delivered in them.
constexpr uint64_t kMaxCallBody = 1024 * 1024 - 8192;
constexpr uint64_t kMaxReplyBody = 256ULL * 1024 * 1024;
// The largest reply that a device delivers for certain; it answers FAILED_TRANSACTION above.
constexpr uint64_t kDeviceReplyBody = 1'040'000;

// The kernel passes at most this many descriptors at once.
constexpr size_t kMaxDescriptors = 253;

// A whole message that arrived: its bytes, from the header on, and its descriptors. What it took of
// memory goes to the next message that arrives on the same thread, unless that is large.
struct IncomingMessage {
    IncomingMessage() = default;
    // The other one is as if newly made afterwards.
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

    // Makes room for so many bytes, of which the first `filled` are kept. False when there is no
    // memory: a length is the other end's word, and must not cost this process its life.
    bool reserve(size_t wanted, size_t filled);
    // Makes room for exactly so many bytes in a message that has none.
    bool reserveExactly(size_t wanted);

    std::unique_ptr<uint8_t[]> bytes;
    size_t capacity = 0;
    std::vector<unique_fd> descriptors;

    const Header& header() const { return *reinterpret_cast<const Header*>(bytes.get()); }
    uint8_t* body() const { return bytes.get() + sizeof(Header); }
};

// A message to send: it refers to the parcel it was made from and to the parcel's buffers. Where a
// buffer points to another, and in the places of descriptors, it says zero: the receiver puts its
// own numbers there, and those of this process are nobody's business.
class OutgoingMessage {
  public:
    // OK; FAILED_TRANSACTION when the body exceeds the limit or there are too many descriptors; the
    // parcel's own error when something could not be written into it; an errno as a status when an
    // interface cannot be handed out.
    status_t encode(const Parcel& parcel, MessageType type, uint32_t code, uint64_t bodyLimit);
    // A reply without a parcel.
    void encodeStatus(status_t status);

    // Bytes of its body.
    uint64_t bodySize() const { return mBodySize; }
    // What is to be sent; good until the next encode or finish.
    Sending& sending() { return mSending; }
    // To be called when it is sent, or never will be: closes the descriptors that are the message's
    // own, for while they are open here an object that was handed out could not see its client go;
    // and gives back what memory a large message took.
    void finish();

  private:
    void clear();
    void addPiece(const void* bytes, size_t length);
    status_t addDescriptors(const Parcel::Object& object);
    // Finds out what is copied; gives the bytes of the others, with their padding.
    uint64_t chooseCopies(const std::vector<Parcel::Object>& objects);
    // small: the bytes of all that is not sent from where it stands.
    void layOut(const Header& header, const std::vector<uint8_t>& data,
                const std::vector<Parcel::Object>& objects, size_t small);

    std::vector<uint8_t> mSmall;  // copies of small things, with their padding; never shrinks
    // What becomes of each object: whether it is copied, and where its copy is.
    struct Copy {
        bool made;
        uint8_t* bytes;
    };
    std::vector<Copy> mCopies;
    uint64_t mBodySize = 0;
    Sending mSending;  // its descriptors are borrowed from the parcel, or from mHandedOut
    std::vector<unique_fd> mHandedOut;  // ends of connections to interfaces in the parcel
};

// Takes the objects out of a message: their places, lengths and parents are those of a well-formed
// parcel afterwards, and descriptors stand in their handles. Pointers between buffers are not made;
// reading does that. BAD_VALUE when anything is out of bounds, when descriptors are missing or left
// over, or when an interface's descriptor is no connection; objects is then undefined.
status_t decodeObjects(IncomingMessage* message, std::vector<Parcel::Object>* objects);

constexpr uint64_t alignedToEight(uint64_t length) {
    return (length + 7) & ~uint64_t{7};
}

}  // namespace android::hardware::transport
