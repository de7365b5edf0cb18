// A client that implements the protocol by hand, so that it can break it.
#pragma once

#include <android-base/unique_fd.h>
#include <mlk/test/everything/1.0/IEverything.h>
#include <utils/Errors.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/hidl/src/MessageReader.h"
#include "host/hidl/src/Wire.h"

namespace mlk::test {

using ::android::base::unique_fd;
using ::android::hardware::transport::Header;
using ::android::hardware::transport::Hello;
using ::android::hardware::transport::MessageType;
using ::android::hardware::transport::WireObject;
using ::mlk::test::everything::V1_0::IEverything;

/** The parts of a message; a test may change them before bytes() joins them. */
struct RawMessage {
    struct Object {
        WireObject record;
        std::vector<uint8_t> bytes;
    };
    Header header{Header::kMagic, MessageType::CALL, 0, 0, 0, 0, 0};
    std::vector<uint8_t> data;
    std::vector<Object> objects;
    std::vector<int> descriptors;
    /** False sizes for the header, if set. */
    std::optional<uint32_t> dataSize;
    std::optional<uint32_t> objectCount;
    std::optional<uint32_t> fdCount;
    std::optional<uint64_t> bodySize;
    /** Whether the body is cut, or filled with zeros, to bodySize. */
    bool isCut = false;

    /** Adds numbers, and a text with its NUL, to the data. */
    void number(uint32_t value);
    void text(const std::string& value);
    /** Adds a buffer, embedded when parent is given. */
    size_t buffer(std::vector<uint8_t> bytes);
    size_t embedded(std::vector<uint8_t> bytes, uint32_t parent, uint64_t offset);
    /** Adds a handle with these counts of descriptors and numbers, embedded in an object. */
    size_t handle(int numFds, int numInts, uint32_t parent, uint64_t offset);
    /** Adds an interface. */
    size_t binder();

    /** The message in the form in which it is sent. */
    std::vector<uint8_t> bytes() const;
};

/** Sound calls of IEverything. */
RawMessage callOf(uint32_t code);
RawMessage textCall(const std::string& text);        // text(text)
RawMessage fdCall(const std::vector<int>& numbers);  // fd(a handle of these descriptors)
RawMessage listenCall(int descriptor);               // listen(an object there, "")
RawMessage bytesCall(uint32_t count);                // bytes(count)

/** Codes of methods in IEverything. */
enum Code : uint32_t {
    TEXT = 3,
    FD = 5,
    LISTEN = 15,
    LISTENERS = 19,
    POKE = 22,
    BYTES = 24,
};

/** A connection to the service "default" of an interface in a runtime folder. */
class RawClient {
  public:
    explicit RawClient(const std::string& runtime,
                       const std::string& interface = IEverything::descriptor);

    /** Reads the server's hello; false when it is malformed. */
    bool hello();
    /** Sends a message or a part of one, with descriptors; false when the server is gone. */
    bool send(const std::vector<uint8_t>& bytes, const std::vector<int>& descriptors = {});
    /** Sends a later part of a message, whose descriptors are not announced. */
    bool sendRest(const std::vector<uint8_t>& bytes, const std::vector<int>& descriptors);
    bool send(const RawMessage& message) { return send(message.bytes(), message.descriptors); }
    /**
     * Reads a whole reply. Returns the transport's status, or nothing when the connection ends
     * instead.
     */
    std::optional<::android::status_t> replyStatus();
    /** Whether the server ends the connection without a reply. */
    bool ends();
    void close() { mSocket.reset(); }
    int socket() const { return mSocket.get(); }

  private:
    unique_fd mSocket;
    ::android::hardware::transport::MessageReader mReader{
            ::android::hardware::transport::kMaxReplyBody};
};

/**
 * Raises this process's limit to `count` descriptors more than it has open; false when the system
 * refuses.
 */
bool allowMoreDescriptors(size_t count);

}  // namespace mlk::test
