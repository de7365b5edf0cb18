// The folder of the services' sockets, the names in it, and who may use them.
#pragma once

#include <android-base/unique_fd.h>
#include <sys/types.h>
#include <utils/Errors.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "Socket.h"

namespace android::hardware::transport {

using ::android::base::unique_fd;

/**
 * The folder of this set's sockets: $MLK_RUNTIME_DIR, else $XDG_RUNTIME_DIR/mlkconfigs, else
 * /run/mlkconfigs. The descriptor is -1 when the folder cannot be used.
 */
struct RuntimeFolder {
    std::string path;
    unique_fd descriptor;
    uid_t owner = 0;
};

/**
 * For a server: creates the folder with mode 0700 if it is missing. It must belong to this user or
 * root; one log line says why it cannot be used.
 */
RuntimeFolder makeRuntimeFolder();
/** For a client: opens the existing folder. Root may open any user's folder. */
RuntimeFolder findRuntimeFolder();

/**
 * Returns the name of a service's socket: "package@1.0::IName.instance". Empty when the parts are
 * invalid: they must be non-empty, contain no "/" and no NUL, and fit into a file name.
 */
std::string socketName(const std::string& descriptor, const std::string& instance);
/** Splits such a name; false when the file is not a service's. */
bool splitSocketName(const std::string& file, std::string* descriptor, std::string* instance);

/**
 * Creates a listening socket of that name; an errno as a status when that fails. Takes the name
 * over from another process, as on a device. Both processes log that as an error: the former owner
 * learns of it from a connection.
 */
status_t listenOn(const RuntimeFolder& folder, const std::string& name, unique_fd* listener);
/**
 * Connects to that name and reads the server's hello. -1 when no server answers, the server is not
 * trusted (trusted are this user and root; for root, the folder's owner), or it speaks another
 * version. server receives the number that distinguishes it from other servers of its name. Waits a
 * few seconds at most, and never beyond the deadline, for a server whose threads are all busy.
 */
unique_fd connectTo(const RuntimeFolder& folder, const std::string& name, uint64_t* server,
                    const Deadline& end);

/**
 * Whether a server that this user trusts has that name: one that sends its hello, one that closes
 * the connection instead because it has none for this process, one that sends nothing within the
 * limit, or one that accepts no connection within it because its queue is full.
 */
bool isServed(const RuntimeFolder& folder, const std::string& name,
              std::chrono::milliseconds limit);

/**
 * The process that listens on the socket of this file, which may be an O_PATH descriptor; 0 if it
 * cannot be asked because its queue of clients is full; nothing if none listens. Connects once.
 */
std::optional<pid_t> listenerOf(int file);

/** A random number that is unique in practice. */
uint64_t randomNumber();

}  // namespace android::hardware::transport
