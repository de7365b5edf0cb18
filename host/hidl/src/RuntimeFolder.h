// Where the services' sockets lie, what they are called, and who may use them.
#pragma once

#include <android-base/unique_fd.h>
#include <sys/types.h>
#include <utils/Errors.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "Socket.h"

namespace android::hardware::transport {

using ::android::base::unique_fd;

// The folder of this set's sockets: $MLK_RUNTIME_DIR, else $XDG_RUNTIME_DIR/mlkconfigs, else
// /run/mlkconfigs. The descriptor is -1 when the folder cannot be used.
struct RuntimeFolder {
    std::string path;
    unique_fd descriptor;
    uid_t owner = 0;
};

// For a server: makes the folder with mode 0700 when it is missing. It must be this user's or
// root's; one log line says why it cannot be used.
RuntimeFolder makeRuntimeFolder();
// For a client: the folder must be there. Root may look into anybody's.
RuntimeFolder findRuntimeFolder();

// The socket's file for a service: "package@1.0::IName.instance". Empty when the two make no name:
// they must be non-empty, hold no "/" and no NUL, and not be too long for a file.
std::string socketName(const std::string& descriptor, const std::string& instance);
// The reverse; false for a file that is not a service's.
bool splitSocketName(const std::string& file, std::string* descriptor, std::string* instance);

// Makes a listening socket of that name. A status of the errno when it cannot. When another process
// has the name it takes it over, as on a device; that is logged as an error here, and by the other
// one, which is given a connection to learn of it.
status_t listenOn(const RuntimeFolder& folder, const std::string& name, unique_fd* listener);
// Connects to that name and takes the server's hello: -1 when nobody answers there, when the server
// is nobody whom this user trusts (itself, root; for root, the folder's owner), or speaks another
// version. server receives the number that tells it from others of its name. Waits at most a few
// seconds, and not longer than the deadline, for a server all of whose threads are busy.
unique_fd connectTo(const RuntimeFolder& folder, const std::string& name, uint64_t* server,
                    const Deadline& end);

// Whether a server whom this user trusts has that name: one that says its hello, or that says
// nothing within the limit, or takes no connection within it because its queue is full.
bool isServed(const RuntimeFolder& folder, const std::string& name,
              std::chrono::milliseconds limit);

// A number that nobody else has.
uint64_t randomNumber();

}  // namespace android::hardware::transport
