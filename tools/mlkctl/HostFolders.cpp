#include "tools/mlkctl/HostFolders.h"

#include <android-base/unique_fd.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "host/hidl/RuntimePath.h"
#include "tools/mlkctl/Folder.h"

namespace mlk::ctl {

using host::RuntimeOrigin;
using host::RuntimePath;

namespace {

using ::android::base::unique_fd;

// Of "/proc/self/fd/" and a number.
constexpr size_t kMostDescriptorPath = 32;
// A server that has a thread for it answers a connection at once.
constexpr int kMillisecondsForAWelcome = 500;

#ifdef __ANDROID__
constexpr bool kIsHost = false;
#else
constexpr bool kIsHost = true;
#endif

// The variable's value; empty if it is not set.
std::string variable(const char* name) {
    const char* value = getenv(name);
    return value == nullptr ? std::string() : value;
}

// Which variables name the folder of the sockets.
const char* nameOf(RuntimeOrigin origin) {
    switch (origin) {
        case RuntimeOrigin::OWN:
            return "MLK_RUNTIME_DIR";
        case RuntimeOrigin::SESSION:
            return "$XDG_RUNTIME_DIR/mlkconfigs, as MLK_RUNTIME_DIR is not set";
        case RuntimeOrigin::DEFAULT:
            break;
    }
    return "the default, as neither MLK_RUNTIME_DIR nor XDG_RUNTIME_DIR is set";
}

std::string advice(RuntimeOrigin origin) {
    return origin == RuntimeOrigin::DEFAULT && geteuid() != 0
                   ? "; set MLK_RUNTIME_DIR to the folder of the service"
                   : "";
}

// What is in the folder, without hidden names: those of the runtime itself.
Folder visible(const std::string& path) {
    Folder folder = readFolder(path);
    folder.names.erase(std::remove_if(folder.names.begin(), folder.names.end(),
                                      [](const std::string& name) { return name[0] == '.'; }),
                       folder.names.end());
    return folder;
}

// What is in a folder: "does not exist", "is empty", "holds a, b, c and 2 more".
std::string contentOf(const Folder& folder) {
    if (folder.error == ENOENT) {
        return "does not exist";
    }
    if (folder.error != 0) {
        return std::string("cannot be read: ") + strerror(folder.error);
    }
    if (folder.names.empty()) {
        return "is empty";
    }
    constexpr size_t kMostNames = 3;
    std::string list;
    for (size_t i = 0; i < std::min(folder.names.size(), kMostNames); ++i) {
        list += (i == 0 ? "" : ", ") + folder.names[i];
    }
    if (folder.names.size() > kMostNames) {
        list += " and " + std::to_string(folder.names.size() - kMostNames) + " more";
    }
    return "holds " + list;
}

std::string named(const RuntimePath& folder) {
    return folder.path + " (" + nameOf(folder.origin) + ')';
}

std::string propertyFolder() {
    return variable("MLK_ROOT") + "/data/property";
}

}  // namespace

std::string runtimeFolder() {
    if (!kIsHost) {
        return {};
    }
    return host::runtimePath().path;
}

std::string aboutSockets() {
    if (!kIsHost) {
        return {};
    }
    const RuntimePath folder = host::runtimePath();
    return "; sockets are looked for in " + named(folder) + ", which " +
           contentOf(visible(folder.path)) + advice(folder.origin);
}

std::string aboutSocket(const std::string& name) {
    if (!kIsHost) {
        return {};
    }
    const RuntimePath runtime = host::runtimePath();
    const Folder folder = visible(runtime.path);
    if (std::binary_search(folder.names.begin(), folder.names.end(), name)) {
        return ": no process serves the socket " + name + " in " + named(runtime);
    }
    return ": no socket " + name + " in " + named(runtime) + ": the folder " + contentOf(folder) +
           advice(runtime.origin);
}

std::string socketOf(std::string_view interface) {
    return "vendor.morlak.mlkconfigs@1.0::" + std::string(interface) + ".default";
}

std::optional<int> processRefusing(const std::string& name) {
    if (!kIsHost) {
        return {};
    }
    // By its descriptor, whose path fits into an address however long the folder's is.
    const unique_fd file(open((runtimeFolder() + '/' + name).c_str(), O_PATH | O_CLOEXEC));
    const unique_fd connection(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ("/proc/self/fd/" + std::to_string(file.get())).copy(address.sun_path, kMostDescriptorPath);
    ucred server{};
    socklen_t size = sizeof(server);
    if (!file.ok() || !connection.ok() ||
        connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) !=
                0 ||
        getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &server, &size) != 0) {
        return {};
    }
    pollfd ready{connection.get(), POLLIN, 0};
    char byte = 0;
    const bool isClosed = TEMP_FAILURE_RETRY(poll(&ready, 1, kMillisecondsForAWelcome)) == 1 &&
                          TEMP_FAILURE_RETRY(recv(connection.get(), &byte, 1, MSG_DONTWAIT)) == 0;
    return isClosed ? std::optional<int>(server.pid) : std::nullopt;
}

std::string aboutRefusal(int process) {
    return "process " + std::to_string(process) +
           " has the socket but refuses the connection, because other clients hold too many; its "
           "log says which client has the most: end that one";
}

std::string propertyFile(const std::string& key) {
    return kIsHost ? propertyFolder() + '/' + key : std::string();
}

std::string aboutMissingSet() {
    if (!kIsHost) {
        return {};
    }
    const std::string root = variable("MLK_ROOT");
    const auto exists = [](const std::string& path) { return readFolder(path).error != ENOENT; };
    if (exists(root + "/tvconfigs") || exists(propertyFolder())) {
        return {};
    }
    return "no product line in " + (root.empty() ? "/ (MLK_ROOT is not set)" : "MLK_ROOT=" + root) +
           ": there is neither a folder " + root + "/tvconfigs nor " + propertyFolder();
}

std::string aboutProperties() {
    if (!kIsHost) {
        return {};
    }
    return propertyFolder() + (variable("MLK_ROOT").empty() ? " (MLK_ROOT is not set) " : " ") +
           contentOf(visible(propertyFolder()));
}

}  // namespace mlk::ctl
