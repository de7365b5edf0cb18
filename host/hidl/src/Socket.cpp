#include "Socket.h"

#include <fcntl.h>
#include <log/log.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "Wire.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

constexpr int kBacklog = 128;
constexpr timeval kHelloLimit = {5, 0};

std::string runtimePath() {
    const char* own = getenv("MLK_RUNTIME_DIR");
    if (own != nullptr && *own != '\0') return own;
    const char* session = getenv("XDG_RUNTIME_DIR");
    if (session != nullptr && *session != '\0') return std::string(session) + "/mlkconfigs";
    return "/run/mlkconfigs";
}

bool isOursOrRoots(uid_t user) {
    return user == geteuid() || user == 0;
}

// The address of a file in the folder. A path too long for an address goes through the descriptor.
sockaddr_un addressOf(const RuntimeFolder& folder, const std::string& file) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::string path = folder.path + "/" + file;
    if (path.size() >= sizeof(address.sun_path)) {
        path = "/proc/self/fd/" + std::to_string(folder.descriptor.get()) + "/" + file;
    }
    const size_t length = std::min(path.size(), sizeof(address.sun_path) - 1);
    memcpy(address.sun_path, path.data(), length);
    return address;
}

const sockaddr* generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

}  // namespace

RuntimeFolder openRuntimeFolder(bool create) {
    RuntimeFolder folder{runtimePath(), {}};
    if (create && mkdir(folder.path.c_str(), 0700) != 0 && errno == ENOENT) {
        std::error_code ignored;
        std::filesystem::create_directories(std::filesystem::path(folder.path).parent_path(),
                                            ignored);
        (void)mkdir(folder.path.c_str(), 0700);
    }
    unique_fd descriptor(open(folder.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat status {};
    if (!descriptor.ok() || fstat(descriptor.get(), &status) != 0) {
        if (create)
            ALOGE("%s: cannot use the runtime folder: %s", folder.path.c_str(), strerror(errno));
        return folder;
    }
    if (!isOursOrRoots(status.st_uid)) {
        ALOGE("%s: the runtime folder belongs to user %u", folder.path.c_str(), status.st_uid);
        return folder;
    }
    folder.descriptor = std::move(descriptor);
    return folder;
}

std::string socketName(const std::string& descriptor, const std::string& instance) {
    if (descriptor.empty() || instance.empty()) return {};
    const std::string name = descriptor + "." + instance;
    // A file name, with room for what a temporary one needs.
    if (name.find('/') != std::string::npos || name.size() > 200) return {};
    return name;
}

bool splitSocketName(const std::string& file, std::string* descriptor, std::string* instance) {
    const size_t name = file.find("::");
    if (file.empty() || file.front() == '.' || name == std::string::npos) return false;
    const size_t dot = file.find('.', name);
    if (dot == std::string::npos) return false;
    *descriptor = file.substr(0, dot);
    *instance = file.substr(dot + 1);
    return !instance->empty();
}

status_t listenOn(const RuntimeFolder& folder, const std::string& name, unique_fd* listener) {
    static std::atomic<unsigned> count{0};
    unique_fd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.ok()) return -errno;
    // Bound under a name of its own first: the service's name is never without a listener.
    const std::string temporary =
            "." + name + "." + std::to_string(getpid()) + "." + std::to_string(count++);
    const sockaddr_un address = addressOf(folder, temporary);
    if (bind(socket.get(), generic(address), sizeof(address)) != 0) return -errno;
    const int directory = folder.descriptor.get();
    if (listen(socket.get(), kBacklog) != 0 ||
        renameat(directory, temporary.c_str(), directory, name.c_str()) != 0) {
        const int error = errno;
        (void)unlinkat(directory, temporary.c_str(), 0);
        return -error;
    }
    *listener = std::move(socket);
    return OK;
}

unique_fd connectTo(const RuntimeFolder& folder, const std::string& name, uint64_t* server) {
    unique_fd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.ok() || !folder.descriptor.ok()) return {};
    const sockaddr_un address = addressOf(folder, name);
    (void)setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &kHelloLimit, sizeof(kHelloLimit));
    (void)setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &kHelloLimit, sizeof(kHelloLimit));
    int result;
    do {
        result = connect(socket.get(), generic(address), sizeof(address));
    } while (result != 0 && errno == EINTR);
    if (result != 0 || !peerIsTrusted(socket.get())) return {};
    Hello hello{};
    size_t filled = 0;
    while (filled < sizeof(hello)) {
        const ssize_t got = recv(socket.get(), reinterpret_cast<uint8_t*>(&hello) + filled,
                                 sizeof(hello) - filled, 0);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return {};
        filled += static_cast<size_t>(got);
    }
    if (hello.magic != Hello::kMagic || hello.version != Hello::kVersion) return {};
    // Calls take as long as they take.
    constexpr timeval forever = {0, 0};
    (void)setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &forever, sizeof(forever));
    (void)setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &forever, sizeof(forever));
    *server = hello.server;
    return socket;
}

bool peerIsTrusted(int socket) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           isOursOrRoots(peer.uid);
}

status_t connectedPair(unique_fd* first, unique_fd* second) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return -errno;
    first->reset(ends[0]);
    second->reset(ends[1]);
    return OK;
}

int sendPieces(int socket, std::vector<iovec>* pieces, const std::vector<int>& descriptors,
               int flags) {
    constexpr size_t kMaxPieces = 256;
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int) * kMaxDescriptors)];
    bool attach = !descriptors.empty();
    size_t next = 0;
    while (next < pieces->size()) {
        msghdr message{};
        message.msg_iov = pieces->data() + next;
        message.msg_iovlen = std::min(pieces->size() - next, kMaxPieces);
        if (attach) {
            const size_t bytes = sizeof(int) * descriptors.size();
            message.msg_control = control;
            message.msg_controllen = CMSG_SPACE(bytes);
            cmsghdr* rights = CMSG_FIRSTHDR(&message);
            rights->cmsg_level = SOL_SOCKET;
            rights->cmsg_type = SCM_RIGHTS;
            rights->cmsg_len = CMSG_LEN(bytes);
            memcpy(CMSG_DATA(rights), descriptors.data(), bytes);
        }
        const ssize_t result = sendmsg(socket, &message, flags | MSG_NOSIGNAL);
        if (result < 0) {
            if (errno == EINTR) continue;
            const int error = errno == EWOULDBLOCK ? EAGAIN : errno;
            pieces->erase(pieces->begin(), pieces->begin() + static_cast<ptrdiff_t>(next));
            return error;
        }
        attach = false;
        auto sent = static_cast<size_t>(result);
        while (next < pieces->size() && sent >= (*pieces)[next].iov_len) {
            sent -= (*pieces)[next++].iov_len;
        }
        if (sent != 0) {
            iovec& piece = (*pieces)[next];
            piece.iov_base = static_cast<uint8_t*>(piece.iov_base) + sent;
            piece.iov_len -= sent;
        }
    }
    pieces->clear();
    return 0;
}

ssize_t receiveBytes(int socket, void* bytes, size_t capacity, std::vector<unique_fd>* descriptors,
                     int flags) {
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int) * kMaxDescriptors)];
    iovec piece{bytes, capacity};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof(control);
    ssize_t result;
    do {
        result = recvmsg(socket, &message, flags | MSG_CMSG_CLOEXEC);
    } while (result < 0 && errno == EINTR);
    if (result < 0) return result;
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
         part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
        const size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (size_t i = 0; i < count; ++i) {
            int descriptor;
            memcpy(&descriptor, CMSG_DATA(part) + i * sizeof(int), sizeof(int));
            descriptors->emplace_back(descriptor);
        }
    }
    return result;
}

}  // namespace android::hardware::transport
