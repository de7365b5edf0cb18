#include "RuntimeFolder.h"

#include <fcntl.h>
#include <log/log.h>
#include <poll.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cinttypes>
#include <climits>
#include <cstdio>
#include <cstring>

#include "Wire.h"
#include "host/hidl/RuntimePath.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace host = ::mlk::host;

namespace {

constexpr int kBacklog = 128;
constexpr std::chrono::milliseconds kHelloLimit{5000};
constexpr std::chrono::milliseconds kNoLimit{0};
constexpr std::chrono::milliseconds kLeast{1};

// Only root may create the default folder, so another user is told what to set.
const char* advice() {
    const bool isDefault = host::runtimePath().origin == host::RuntimeOrigin::DEFAULT;
    return isDefault && geteuid() != 0 ? "; set MLK_RUNTIME_DIR to a folder of your own" : "";
}

// Creates a folder for this user alone, whatever the umask takes away; 0 or an errno.
int makeOwnFolder(const std::string& path) {
    return mkdir(path.c_str(), 0700) == 0 && chmod(path.c_str(), 0700) == 0 ? 0 : errno;
}

// Creates the folder and those above it that are missing; 0 or an errno. Only their owner may write
// to those above: whoever else may could put another folder in the place of the one with the
// sockets.
int makeFolder(const std::string& path) {
    const int error = makeOwnFolder(path);
    if (error != ENOENT) {
        return error;
    }
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        (void)mkdir(path.substr(0, slash).c_str(), 0755);
    }
    return makeOwnFolder(path);
}

// Opens the existing folder; 0 or an errno.
int openFolder(RuntimeFolder* folder) {
    folder->path = host::runtimePath().path;
    unique_fd descriptor(open(folder->path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat status {};
    if (!descriptor.ok() || fstat(descriptor.get(), &status) != 0) {
        return errno;
    }
    folder->owner = status.st_uid;
    folder->descriptor = std::move(descriptor);
    return 0;
}

bool isOursOrRoots(uid_t user) {
    return user == geteuid() || user == 0;
}

}  // namespace

RuntimeFolder makeRuntimeFolder() {
    RuntimeFolder folder;
    const int made = makeFolder(host::runtimePath().path);
    int error = openFolder(&folder);
    if (error == ENOENT && made != 0) {
        error = made;
    }
    if (error != 0) {
        ALOGE("%s: cannot use the runtime folder: %s%s", folder.path.c_str(), strerror(error),
              advice());
    } else if (!isOursOrRoots(folder.owner)) {
        ALOGE("%s: the runtime folder belongs to user %u", folder.path.c_str(), folder.owner);
        folder.descriptor.reset();
    }
    return folder;
}

RuntimeFolder findRuntimeFolder() {
    RuntimeFolder folder;
    if (openFolder(&folder) == 0 && !isOursOrRoots(folder.owner) && geteuid() != 0) {
        ALOGE("%s: the runtime folder belongs to user %u", folder.path.c_str(), folder.owner);
        folder.descriptor.reset();
    }
    return folder;
}

std::string socketName(const std::string& descriptor, const std::string& instance) {
    if (descriptor.empty() || instance.empty()) {
        return {};
    }
    std::string name = descriptor + "." + instance;
    if (name.find('/') != std::string::npos || name.find('\0') != std::string::npos) {
        return {};
    }
    if (name.size() > NAME_MAX) {
        return {};
    }
    return name;
}

bool splitSocketName(const std::string& file, std::string* descriptor, std::string* instance) {
    const size_t name = file.find("::");
    if (file.empty() || file.front() == '.' || name == std::string::npos) {
        return false;
    }
    const size_t dot = file.find('.', name);
    if (dot == std::string::npos) {
        return false;
    }
    *descriptor = file.substr(0, dot);
    *instance = file.substr(dot + 1);
    return !instance->empty();
}

uint64_t randomNumber() {
    uint64_t number = 0;
    if (getrandom(&number, sizeof(number), 0) != sizeof(number)) {
        number = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    }
    return number;
}

namespace {

// The address of a path; false when the path is too long.
bool makeAddress(const std::string& path, sockaddr_un* address) {
    *address = {};
    address->sun_family = AF_UNIX;
    if (path.size() >= sizeof(address->sun_path)) {
        return false;
    }
    memcpy(address->sun_path, path.data(), path.size());
    return true;
}

// The path under which the kernel shows the file of a descriptor.
std::string pathOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

const sockaddr* generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

int connectAddress(int socket, const sockaddr_un& address) {
    return static_cast<int>(TEMP_FAILURE_RETRY(connect(socket, generic(address), sizeof(address))));
}

// Connects to the socket that the descriptor `file` names.
int connectFile(int socket, int file) {
    sockaddr_un address;
    if (!makeAddress(pathOf(file), &address)) {
        return -1;
    }
    return connectAddress(socket, address);
}

int connectSocket(int socket, const RuntimeFolder& folder, const std::string& name) {
    sockaddr_un address;
    if (!makeAddress(folder.path + "/" + name, &address)) {
        const unique_fd file(openat(folder.descriptor.get(), name.c_str(), O_PATH | O_CLOEXEC));
        return file.ok() ? connectFile(socket, file.get()) : -1;
    }
    return connectAddress(socket, address);
}

// Like sending, connecting waits for a server that accepts nobody.
void limitSending(int socket, std::chrono::milliseconds time) {
    const timeval limit = {time.count() / 1000, time.count() % 1000 * 1000};
    (void)setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
}

enum class Heard { HELLO, NOTHING, REFUSAL, NONSENSE };

Heard receiveHello(int socket, const Deadline& end, uint64_t* server) {
    Hello hello{};
    ssize_t got;
    do {
        got = TEMP_FAILURE_RETRY(recv(socket, &hello, sizeof(hello), MSG_DONTWAIT | MSG_TRUNC));
        if (got < 0 && errno == EAGAIN && !waitFor(socket, POLLIN, end.left())) {
            return Heard::NOTHING;
        }
    } while (got < 0 && errno == EAGAIN);
    if (got == 0) {
        return Heard::REFUSAL;  // a server that has no connection for this process closes it
    }
    if (got != static_cast<ssize_t>(sizeof(hello))) {
        return Heard::NONSENSE;
    }
    *server = hello.server;
    const bool isOurs = hello.magic == Hello::kMagic && hello.version == Hello::kVersion;
    return isOurs ? Heard::HELLO : Heard::NONSENSE;
}

// Connects to a server that this user trusts, without reading its hello. Sets `isFull` if there is
// no connection because the server's queue is full until the end.
unique_fd connectTrusting(const RuntimeFolder& folder, const std::string& name, const Deadline& end,
                          bool* isFull) {
    *isFull = false;
    unique_fd socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (!socket.ok() || !folder.descriptor.ok()) {
        return {};
    }
    // A zero time-out would mean no limit.
    limitSending(socket.get(), std::max(end.left(), kLeast));
    if (connectSocket(socket.get(), folder, name) != 0) {
        *isFull = errno == EAGAIN;
        return {};
    }
    limitSending(socket.get(), kNoLimit);
    const bool rootVisits = geteuid() == 0 && peerUser(socket.get()) == folder.owner;
    return rootVisits || peerIsTrusted(socket.get()) ? std::move(socket) : unique_fd();
}

// Logs that this process takes the name over. Connecting to the former owner tells it, too.
void tellOfTakingOver(const RuntimeFolder& folder, const std::string& name, int former) {
    const std::optional<pid_t> owner = listenerOf(former);
    if (!owner || *owner == getpid()) {
        return;
    }
    const std::string process =
            *owner == 0 ? "a process that takes no clients" : "process " + std::to_string(*owner);
    ALOGE("%s/%s: this process takes the name from %s, which still has it", folder.path.c_str(),
          name.c_str(), process.c_str());
}

}  // namespace

std::optional<pid_t> listenerOf(int file) {
    const unique_fd socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (socket.ok() && connectFile(socket.get(), file) == 0) {
        return peerProcess(socket.get());
    }
    return socket.ok() && errno == EAGAIN ? std::optional<pid_t>(0) : std::nullopt;
}

status_t listenOn(const RuntimeFolder& folder, const std::string& name, unique_fd* listener) {
    unique_fd socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.ok()) {
        return -errno;
    }
    // Bind under a temporary name first, so that the service's name always has a listener.
    char temporary[24];
    (void)snprintf(temporary, sizeof(temporary), ".%016" PRIx64, randomNumber());
    const int directory = folder.descriptor.get();
    sockaddr_un address;
    if (!makeAddress(folder.path + "/" + temporary, &address) &&
        !makeAddress(pathOf(directory) + "/" + temporary, &address)) {
        return -ENAMETOOLONG;
    }
    if (bind(socket.get(), generic(address), sizeof(address)) != 0) {
        return -errno;
    }
    const unique_fd former(openat(directory, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (listen(socket.get(), kBacklog) != 0 ||
        renameat(directory, temporary, directory, name.c_str()) != 0) {
        const int error = errno;
        (void)unlinkat(directory, temporary, 0);
        return -error;
    }
    if (former.ok()) {
        tellOfTakingOver(folder, name, former.get());
    }
    *listener = std::move(socket);
    return OK;
}

unique_fd connectTo(const RuntimeFolder& folder, const std::string& name, uint64_t* server,
                    const Deadline& end) {
    const Deadline hello(end.isNever() ? kHelloLimit : std::min(kHelloLimit, end.left()));
    bool isFull = false;
    unique_fd socket = connectTrusting(folder, name, hello, &isFull);
    if (!socket.ok() || receiveHello(socket.get(), hello, server) != Heard::HELLO) {
        return {};
    }
    return socket;
}

bool isServed(const RuntimeFolder& folder, const std::string& name,
              std::chrono::milliseconds limit) {
    uint64_t server = 0;
    const Deadline end(limit);
    bool isFull = false;
    const unique_fd socket = connectTrusting(folder, name, end, &isFull);
    if (isFull) {
        return true;
    }
    return socket.ok() && receiveHello(socket.get(), end, &server) != Heard::NONSENSE;
}

}  // namespace android::hardware::transport
