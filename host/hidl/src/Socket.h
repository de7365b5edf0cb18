// The sockets under the transport: where they lie, who may use them, and how bytes and descriptors
// go through them.
#pragma once

#include <android-base/unique_fd.h>
#include <sys/uio.h>
#include <utils/Errors.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace android::hardware::transport {

using ::android::base::unique_fd;

// The folder of this set's sockets, made with mode 0700 when it is missing: $MLK_RUNTIME_DIR, else
// $XDG_RUNTIME_DIR/mlkconfigs, else /run/mlkconfigs. The descriptor is -1, with a log line, when it
// cannot be made or belongs to somebody else than this user and root.
struct RuntimeFolder {
    std::string path;
    unique_fd descriptor;
};
RuntimeFolder openRuntimeFolder(bool create);

// The socket's file for a service: "package@1.0::IName.instance". Empty when the two make no name:
// they must be non-empty and hold no "/".
std::string socketName(const std::string& descriptor, const std::string& instance);
// The reverse; false for a file that is not a service's.
bool splitSocketName(const std::string& file, std::string* descriptor, std::string* instance);

// Makes a listening socket of that name; it takes the name over when another has it. A status of
// the errno when it cannot.
status_t listenOn(const RuntimeFolder& folder, const std::string& name, unique_fd* listener);
// Connects to that name and takes the server's hello: -1 when nobody answers there, when the server
// is neither this user's nor root's, or speaks another version. server receives its number.
unique_fd connectTo(const RuntimeFolder& folder, const std::string& name, uint64_t* server);

// Whether the process at the other end is this user's or root's.
bool peerIsTrusted(int socket);

// Two connected sockets.
status_t connectedPair(unique_fd* first, unique_fd* second);

// As sendmsg: takes what was sent off the front of pieces. The descriptors go with the first byte.
// 0 when everything is sent, EAGAIN when the rest does not fit now (MSG_DONTWAIT), else an errno.
int sendPieces(int socket, std::vector<iovec>* pieces, const std::vector<int>& descriptors,
               int flags);

// As recvmsg: appends descriptors that arrive. The bytes read, 0 at the end, -1 with errno set.
ssize_t receiveBytes(int socket, void* bytes, size_t capacity, std::vector<unique_fd>* descriptors,
                     int flags);

}  // namespace android::hardware::transport
