#include "RawClient.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "Everything.h"
#include "host/hidl/src/Socket.h"

namespace mlk::test {

namespace transport = ::android::hardware::transport;

namespace {

void append(std::vector<uint8_t>* to, const void* bytes, size_t length) {
    const auto* first = static_cast<const uint8_t*>(bytes);
    to->insert(to->end(), first, first + length);
}

void pad(std::vector<uint8_t>* bytes, size_t alignment) {
    bytes->resize((bytes->size() + alignment - 1) / alignment * alignment);
}

// A value as it lies in a struct that is sent.
template <typename T>
std::vector<uint8_t> bytesOf(const T& value) {
    std::vector<uint8_t> bytes;
    append(&bytes, static_cast<const void*>(&value), sizeof(value));
    return bytes;
}

}  // namespace

void RawMessage::number(uint32_t value) {
    append(&data, &value, sizeof(value));
}

void RawMessage::text(const std::string& value) {
    append(&data, value.c_str(), value.size() + 1);
    pad(&data, 4);
}

size_t RawMessage::buffer(std::vector<uint8_t> bytes) {
    const size_t length = bytes.size();
    objects.push_back({{1, 0, 0, 0, 0, length}, std::move(bytes)});
    return objects.size() - 1;
}

size_t RawMessage::embedded(std::vector<uint8_t> bytes, uint32_t parent, uint64_t offset) {
    const size_t length = bytes.size();
    objects.push_back({{1, WireObject::kHasParent, parent, 0, offset, length}, std::move(bytes)});
    return objects.size() - 1;
}

size_t RawMessage::handle(int numFds, int numInts, uint32_t parent, uint64_t offset) {
    const size_t index =
            embedded(std::vector<uint8_t>(sizeof(native_handle_t) +
                                          sizeof(int) * static_cast<size_t>(numFds + numInts)),
                     parent, offset);
    Object& object = objects[index];
    object.record.kind = 2;
    const int head[] = {sizeof(native_handle_t), numFds, numInts};
    memcpy(object.bytes.data(), head, sizeof(head));
    return index;
}

size_t RawMessage::binder() {
    objects.push_back({{3, 0, 0, 0, 0, 0}, {}});
    return objects.size() - 1;
}

std::vector<uint8_t> RawMessage::bytes() const {
    std::vector<uint8_t> body = data;
    pad(&body, 8);
    for (const Object& object : objects) {
        append(&body, &object.record, sizeof(object.record));
    }
    for (const Object& object : objects) {
        append(&body, object.bytes.data(), object.bytes.size());
        pad(&body, 8);
    }
    Header whole = header;
    whole.dataSize = dataSize.value_or(static_cast<uint32_t>(data.size()));
    whole.objectCount = objectCount.value_or(static_cast<uint32_t>(objects.size()));
    whole.fdCount = fdCount.value_or(static_cast<uint32_t>(descriptors.size()));
    whole.bodySize = bodySize.value_or(body.size());
    if (isCut) {
        body.resize(static_cast<size_t>(whole.bodySize));
    }
    std::vector<uint8_t> all;
    append(&all, &whole, sizeof(whole));
    append(&all, body.data(), body.size());
    return all;
}

RawMessage callOf(uint32_t code) {
    RawMessage message;
    message.header.code = code;
    message.text(IEverything::descriptor);
    return message;
}

RawMessage textCall(const std::string& text) {
    RawMessage message = callOf(TEXT);
    hidl_string argument;
    argument.setToExternal(text.c_str(), text.size());
    const size_t parent = message.buffer(bytesOf(argument));
    std::vector<uint8_t> characters(text.begin(), text.end());
    characters.push_back(0);
    (void)message.embedded(characters, static_cast<uint32_t>(parent), 0);
    return message;
}

RawMessage fdCall(const std::vector<int>& descriptors) {
    RawMessage message = callOf(FD);
    // fd(handle) has its handle outside of any struct.
    (void)message.handle(static_cast<int>(descriptors.size()), 0, 0, 0);
    message.objects.back().record.flags = 0;
    message.descriptors = descriptors;
    return message;
}

RawMessage listenCall(int descriptor) {
    RawMessage message = callOf(LISTEN);
    (void)message.binder();
    message.descriptors = {descriptor};
    const hidl_string argument;
    const size_t parent = message.buffer(bytesOf(argument));
    (void)message.embedded({0}, static_cast<uint32_t>(parent), 0);
    return message;
}

RawMessage bytesCall(uint32_t count) {
    RawMessage message = callOf(BYTES);
    message.number(count);
    return message;
}

RawClient::RawClient(const std::string& runtime, const std::string& interface)
    : mSocket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
    const std::string path = runtime + "/" + interface + ".default";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    EXPECT_LT(path.size(), sizeof(address.sun_path));
    memcpy(address.sun_path, path.c_str(), std::min(path.size(), sizeof(address.sun_path) - 1));
    EXPECT_EQ(connect(mSocket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)),
              0)
            << strerror(errno);
    const timeval limit = {30, 0};
    (void)setsockopt(mSocket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
}

bool RawClient::hello() {
    Hello hello{};
    // A fuzz engine interrupts calls with signals.
    const ssize_t got = TEMP_FAILURE_RETRY(recv(mSocket.get(), &hello, sizeof(hello), MSG_WAITALL));
    return got == sizeof(hello) && hello.magic == Hello::kMagic && hello.version == Hello::kVersion;
}

bool RawClient::send(const std::vector<uint8_t>& bytes, const std::vector<int>& descriptors) {
    transport::Sending sending;
    sending.pieces = {{const_cast<uint8_t*>(bytes.data()), bytes.size()}};
    sending.descriptors = descriptors;
    return transport::sendPieces(mSocket.get(), &sending, 0) == 0;
}

bool RawClient::sendRest(const std::vector<uint8_t>& bytes, const std::vector<int>& descriptors) {
    transport::Sending sending;
    sending.pieces = {{const_cast<uint8_t*>(bytes.data()), bytes.size()}};
    sending.descriptors = descriptors;
    sending.announced = true;
    return transport::sendPieces(mSocket.get(), &sending, 0) == 0;
}

std::optional<::android::status_t> RawClient::replyStatus() {
    if (mReader.read(mSocket.get(), 0, 0) != transport::MessageReader::Result::MESSAGE) {
        return {};
    }
    const transport::IncomingMessage reply = mReader.take();
    EXPECT_EQ(reply.header().type, MessageType::REPLY);
    return static_cast<::android::status_t>(reply.header().code);
}

bool RawClient::ends() {
    char byte;
    const ssize_t got = recv(mSocket.get(), &byte, 1, 0);
    return got == 0 || (got < 0 && errno == ECONNRESET);
}

bool allowMoreDescriptors(size_t count) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return false;
    }
    if (limit.rlim_cur >= count + 100) {
        return true;
    }
    limit.rlim_cur = limit.rlim_max;
    return limit.rlim_cur >= count + 100 && setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

}  // namespace mlk::test
