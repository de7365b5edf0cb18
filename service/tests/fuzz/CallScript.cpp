#include "service/tests/fuzz/CallScript.h"

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "service/tests/InterfaceMethods.h"

namespace mlk::fuzzing {

using ::android::hardware::hidl_string;
using ::mlk::test::RawMessage;
using ::vendor::morlak::mlkconfigs::V1_0::IMlkFrameworkConfigs;
using ::vendor::morlak::mlkconfigs::V1_0::IMlkProjectConfigs;
using ::vendor::morlak::mlkconfigs::V1_0::IMlkTvConfigs;
using ::vendor::morlak::mlkconfigs::V1_0::methodRows;
using ::vendor::morlak::mlkconfigs::V1_0::ProjectConfigKey;

namespace {

constexpr size_t kMostObjects = 16;

// Those of android.hidl.base@1.0::IBase: 0x0f and three letters.
constexpr uint32_t kBaseCodes[] = {
        0x0f43484e, 0x0f444247, 0x0f445343, 0x0f485348, 0x0f494e54,
        0x0f4c5444, 0x0f504e47, 0x0f524546, 0x0f535953, 0x0f555444,
};

template <typename Interface>
std::vector<uint32_t> codes() {
    std::vector<uint32_t> result;
    for (const auto& row : methodRows<Interface>()) {
        result.push_back(row.code);
    }
    result.insert(result.end(), std::begin(kBaseCodes), std::end(kBaseCodes));
    return result;
}

}  // namespace

const std::vector<std::string>& services() {
    static const std::vector<std::string> kNames = {IMlkProjectConfigs::descriptor,
                                                    IMlkTvConfigs::descriptor,
                                                    IMlkFrameworkConfigs::descriptor};
    return kNames;
}

const std::vector<uint32_t>& codesOf(size_t service) {
    static const std::vector<uint32_t> kCodes[] = {
            codes<IMlkProjectConfigs>(), codes<IMlkTvConfigs>(), codes<IMlkFrameworkConfigs>()};
    return kCodes[service];
}

ScriptReader::ScriptReader(const uint8_t* data, size_t size, std::string root,
                           std::vector<int> descriptors)
    : mRest(reinterpret_cast<const char*>(data), size),
      mRoot(std::move(root)),
      mDescriptors(std::move(descriptors)) {}

uint8_t ScriptReader::byte() {
    if (mRest.empty()) {
        return 0;
    }
    const auto value = static_cast<uint8_t>(mRest.front());
    mRest.remove_prefix(1);
    return value;
}

std::string ScriptReader::text() {
    const size_t length = std::min<size_t>(byte(), mRest.size());
    std::string result(mRest.substr(0, length));
    mRest.remove_prefix(length);
    if (!result.empty() && result.front() == '$') {
        result.replace(0, 1, mRoot);
    }
    return result;
}

ScriptReader::Place ScriptReader::place() {
    const uint8_t parent = byte();
    return {parent, byte()};
}

std::optional<ScriptedCall> ScriptReader::next() {
    if (mRest.empty() || mCalls++ == CallScript::kMostCalls) {
        return {};
    }
    const size_t service = byte() % services().size();
    const size_t method = byte();
    const std::vector<uint32_t>& codes = codesOf(service);
    uint32_t code = 0;
    if (method < codes.size()) {
        code = codes[method];
    } else {
        for (int i = 0; i < 4; ++i) {
            code = code << 8U | byte();
        }
    }
    const uint8_t flags = byte();
    const bool isOneway = (flags & CallScript::ONEWAY) != 0;
    RawMessage message;
    message.header.type = isOneway ? test::MessageType::ONEWAY_CALL : test::MessageType::CALL;
    message.header.code = code;
    const bool isOther = (flags & CallScript::OTHER_INTERFACE) != 0;
    message.text(isOther ? "another@1.0::IInterface" : services()[service]);
    for (size_t count = byte(); count > 0; --count) {
        message.data.push_back(byte());
    }
    for (size_t count = byte() % kMostObjects; count > 0; --count) {
        addObject(message);
    }
    const uint32_t missing = flags / CallScript::MISSING_DESCRIPTORS;
    message.fdCount = static_cast<uint32_t>(message.descriptors.size()) + missing;
    return ScriptedCall{service, isOneway, missing == 0, std::move(message)};
}

void ScriptReader::passDescriptor(RawMessage& message) {
    message.descriptors.push_back(mDescriptors[message.descriptors.size() % mDescriptors.size()]);
}

void ScriptReader::addText(RawMessage& message, size_t parent, uint64_t offset,
                           const std::string& text) const {
    std::vector<uint8_t> bytes(text.begin(), text.end());
    bytes.push_back(0);
    message.embedded(std::move(bytes), static_cast<uint32_t>(parent), offset);
}

void ScriptReader::addObject(RawMessage& message) {
    // Structs as they stand in a parcel; the receiver puts its own pointers into them.
    const auto bytesOf = [](const auto& value) {
        std::vector<uint8_t> bytes(sizeof(value));
        memcpy(bytes.data(), static_cast<const void*>(&value), sizeof(value));
        return bytes;
    };
    switch (byte() % CallScript::KINDS) {
        case CallScript::TEXT: {
            const std::string value = text();
            const hidl_string argument(value);
            addText(message, message.buffer(bytesOf(argument)), 0, value);
            break;
        }
        case CallScript::KEY: {
            const std::string category = text();
            const std::string key = text();
            const ProjectConfigKey argument{category, key};
            const size_t parent = message.buffer(bytesOf(argument));
            addText(message, parent, offsetof(ProjectConfigKey, category), category);
            addText(message, parent, offsetof(ProjectConfigKey, key), key);
            break;
        }
        case CallScript::BUFFER: {
            const Place where = place();
            const std::string content = text();
            std::vector<uint8_t> bytes(content.begin(), content.end());
            if (where.parent == CallScript::kNoParent) {
                message.buffer(std::move(bytes));
            } else {
                message.embedded(std::move(bytes), where.parent, where.offset);
            }
            break;
        }
        case CallScript::HANDLE: {
            const Place where = place();
            const int numFds = byte() % 4;
            const int numInts = byte() % 4;
            (void)message.handle(numFds, numInts, where.parent, where.offset);
            if (where.parent == CallScript::kNoParent) {
                message.objects.back().record.flags = 0;
                message.objects.back().record.parent = 0;
            }
            for (int i = 0; i < numFds; ++i) {
                passDescriptor(message);
            }
            break;
        }
        case CallScript::BINDER:
            (void)message.binder();
            passDescriptor(message);
            break;
        default: {
            const Place where = place();
            const size_t index = message.embedded({}, where.parent, where.offset);
            auto& record = message.objects[index].record;
            record.flags |= test::WireObject::kIsNull;
            if (where.parent == CallScript::kNoParent) {
                record.flags = test::WireObject::kIsNull;
                record.parent = 0;
            }
        }
    }
}

void ScriptWriter::call(size_t service, size_t method, uint8_t flags,
                        const std::vector<uint8_t>& numbers, size_t objects) {
    byte(service);
    byte(method);
    byte(flags);
    byte(numbers.size());
    mBytes.append(numbers.begin(), numbers.end());
    byte(objects);
}

void ScriptWriter::text(std::string_view text) {
    byte(text.size());
    mBytes += text;
}

}  // namespace mlk::fuzzing
