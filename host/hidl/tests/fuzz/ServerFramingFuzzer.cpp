// Feeds a server with messages and descriptors of a client. The first byte of an input is the
// number of descriptors that are sent with the first message, the second the size of the pieces in
// which the messages are sent once more.

#include <fcntl.h>
#include <hidl/HidlTransportSupport.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string_view>

#include "Calls.h"
#include "host/hidl/tests/RawClient.h"
#include "host/testing/HostSet.h"
#include "host/testing/fuzz/Fuzzing.h"

using namespace mlk::test;
namespace fuzzing = mlk::fuzzing;

namespace {

constexpr size_t kThreads = 3;
constexpr size_t kMostDescriptors = 8;
// More than the process ever opens; each input that leaks a descriptor gets closer to it.
constexpr int kMostOpen = 200;

// Destroyed when the process ends.
const mlk::testing::HostSet& set() {
    static const mlk::testing::HostSet theSet;
    return theSet;
}

class Server {
  public:
    Server() {
        (void)set();
        // Everything::sign writes to any descriptor that a client sends.
        (void)signal(SIGPIPE, SIG_IGN);
        android::hardware::configureRpcThreadpool(kThreads, false /* callerWillJoin */);
        fuzzing::require(mService->registerAsService() == android::OK, "the service is registered");
        for (size_t i = 0; i < kMostDescriptors; ++i) {
            mDescriptors.push_back(i % 2 == 0 ? deadSocket() : open("/dev/null", O_RDWR));
        }
    }
    std::vector<int> descriptors(size_t count) const {
        const auto first = mDescriptors.begin();
        return {first, first + static_cast<ptrdiff_t>(count)};
    }

  private:
    static int deadSocket() {
        int ends[2];
        fuzzing::require(socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0, "sockets");
        close(ends[1]);
        return ends[0];
    }

    const sp<IEverything> mService = new TameEverything;
    std::vector<int> mDescriptors;
};

Server& server() {
    // Never destroyed: the pool's threads run as long as the process.
    static auto* const theServer = new Server;
    return *theServer;
}

// Reads everything that the server sends until the connection ends.
std::string received(int socket) {
    std::string bytes;
    char chunk[android::hardware::transport::kMostPacketBytes];
    ssize_t count = 0;
    while ((count = TEMP_FAILURE_RETRY(recv(socket, chunk, sizeof chunk, 0))) > 0) {
        bytes.append(chunk, static_cast<size_t>(count));
    }
    fuzzing::require(count == 0 || errno == ECONNRESET, "a server ends a connection");
    return bytes;
}

// Returns the headers of the replies and announcements, which must be sound.
std::string headersOf(std::string_view bytes) {
    std::string headers;
    while (!bytes.empty()) {
        Header header{};
        fuzzing::require(bytes.size() >= sizeof header, "a reply has a header");
        memcpy(&header, bytes.data(), sizeof header);
        const bool announces = header.type == MessageType::DESCRIPTORS && header.bodySize == 0;
        fuzzing::require(
                header.magic == Header::kMagic && (header.type == MessageType::REPLY || announces),
                "a server sends nothing but replies and announcements");
        fuzzing::require(header.bodySize <= bytes.size() - sizeof header, "replies are whole");
        bytes.remove_prefix(sizeof header + header.bodySize);
        headers.append(reinterpret_cast<const char*>(&header), sizeof header);
    }
    return headers;
}

// The size of the message that the bytes begin with, as its header says; all of the bytes if it
// says something else.
size_t sizeOfFirst(std::string_view bytes) {
    Header header{};
    if (bytes.size() < sizeof header) {
        return bytes.size();
    }
    memcpy(&header, bytes.data(), sizeof header);
    const bool fits = header.bodySize <= bytes.size() - sizeof header;
    return fits ? sizeof header + header.bodySize : bytes.size();
}

// Returns the server's answers to the messages, which are sent in pieces of at most that size.
std::string answers(std::string_view bytes, const std::vector<int>& descriptors, size_t pieceSize) {
    RawClient client(set().runtime());
    fuzzing::require(client.hello(), "a client is welcome");
    bool isFirst = true;
    while (!bytes.empty()) {
        std::string_view message = bytes.substr(0, sizeOfFirst(bytes));
        bytes.remove_prefix(message.size());
        while (!message.empty()) {
            const std::string_view piece = message.substr(0, pieceSize);
            message.remove_prefix(piece.size());
            // A server that ends the connection reads no more.
            (void)client.send({piece.begin(), piece.end()},
                              isFirst ? descriptors : std::vector<int>());
            isFirst = false;
        }
    }
    (void)shutdown(client.socket(), SHUT_WR);
    return headersOf(received(client.socket()));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3) {
        return 0;
    }
    const std::vector<int> descriptors = server().descriptors(data[0] % kMostDescriptors);
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
    const std::string whole = answers(bytes, descriptors, bytes.size());
    if (descriptors.empty() && data[1] != 0) {
        fuzzing::requireEqual("what is answered to pieces", answers(bytes, {}, data[1]), whole);
    }
    const int lowest = dup(STDERR_FILENO);
    fuzzing::require(lowest < kMostOpen, "no descriptor leaks");
    close(lowest);
    return 0;
}
