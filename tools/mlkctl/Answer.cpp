#include "tools/mlkctl/Answer.h"

#include <cstring>
#include <string_view>

#include "tools/common/Text.h"
#include "tools/mlkctl/Failure.h"
#include "tools/mlkctl/SharedMemory.h"

namespace mlk::ctl {

namespace {

template <typename Optional>
void printOptional(std::string& out, const Optional& value) {
    out += R"({"success":)";
    print(out, value.success);
    out += R"(,"value":)";
    print(out, value.value);
    out += '}';
}

void printBytes(std::string& out, const uint8_t* bytes, size_t size) {
    out += R"({"size":)" + std::to_string(size) + R"(,"base64":")" + base64(bytes, size) + R"("})";
}

void checkFlag(const bool& flag) {
    uint8_t byte = 0;
    std::memcpy(&byte, &flag, sizeof(byte));
    if (byte > 1) {
        throw Failure(ExitStatus::NO_ANSWER,
                      "no answer: the service sent a truth value of " + std::to_string(byte));
    }
}

}  // namespace

void checkSound(const V1_0::OptionalBool& answer) {
    checkFlag(answer.success);
    checkFlag(answer.value);
}

void checkSound(const V1_0::OptionalInt32& answer) {
    checkFlag(answer.success);
}

void checkSound(const V1_0::OptionalString& answer) {
    checkFlag(answer.success);
}

void print(std::string& out, bool value) {
    out += value ? "true" : "false";
}

void print(std::string& out, int32_t value) {
    out += std::to_string(value);
}

void print(std::string& out, uint32_t value) {
    out += std::to_string(value);
}

void print(std::string& out, const hidl_string& value) {
    appendJsonString(out, {value.c_str(), value.size()});
}

void print(std::string& out, const V1_0::OptionalBool& value) {
    printOptional(out, value);
}

void print(std::string& out, const V1_0::OptionalInt32& value) {
    printOptional(out, value);
}

void print(std::string& out, const V1_0::OptionalString& value) {
    printOptional(out, value);
}

void print(std::string& out, const V1_0::ConfigKeyValue& value) {
    out += R"({"key":)";
    print(out, value.key);
    out += R"(,"value":)";
    print(out, value.value);
    out += '}';
}

void print(std::string& out, const V1_0::HidlFreqListItem& value) {
    const auto* label = reinterpret_cast<const char*>(value.label.data());
    const std::string_view field(label, value.label.size());
    out += R"({"channel":)" + std::to_string(value.channel);
    out += R"(,"frequency":)" + std::to_string(value.frequency);
    out += R"(,"bandwidth":)" + std::to_string(value.bandwidth);
    out += R"(,"label":)" + jsonString(field.substr(0, field.find('\0')));
    out += R"(,"modulation":)" + std::to_string(value.modulation) + '}';
}

void print(std::string& out, const hidl_vec<uint8_t>& bytes) {
    printBytes(out, bytes.data(), bytes.size());
}

void print(std::string& out, const hidl_memory& memory) {
    const SharedMemory mapped(memory);
    printBytes(out, mapped.data(), mapped.size());
}

std::string rawBytes(const hidl_vec<uint8_t>& bytes) {
    return {bytes.begin(), bytes.end()};
}

std::string rawBytes(const hidl_memory& memory) {
    const SharedMemory mapped(memory);
    return {mapped.data(), mapped.data() + mapped.size()};
}

}  // namespace mlk::ctl
