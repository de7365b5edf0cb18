#include "tests/vts/Ask.h"

#include <android/hidl/memory/1.0/IMemory.h>
#include <hidlmemory/mapping.h>

#include <cstdio>
#include <numeric>

namespace vendor::morlak::mlkconfigs::V1_0::vts {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hidl::memory::V1_0::IMemory;

std::string printable(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7f) {
            result += c;
        } else {
            char escape[8];
            snprintf(escape, sizeof escape, "\\x%02X", byte);
            result += escape;
        }
    }
    return result + '"';
}

std::string bytesText(std::string_view bytes) {
    // FNV-1a: the two sides may be programs of different libraries.
    uint64_t sum = 0xcbf29ce484222325U;
    for (const char c : bytes) {
        sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    }
    return std::to_string(bytes.size()) + " bytes, sum " + std::to_string(sum);
}

std::string textOf(uint32_t answer) {
    return std::to_string(answer);
}
std::string textOf(const std::string& answer) {
    return printable(answer);
}
std::string textOf(const hidl_string& answer) {
    return printable({answer.c_str(), answer.size()});
}

namespace {

std::string withSuccess(bool success, const std::string& value) {
    return success ? value : "failed, " + value;
}

}  // namespace

std::string textOf(const OptionalBool& answer) {
    return withSuccess(answer.success, answer.value ? "true" : "false");
}
std::string textOf(const OptionalInt32& answer) {
    return withSuccess(answer.success, std::to_string(answer.value));
}
std::string textOf(const OptionalString& answer) {
    return withSuccess(answer.success, textOf(answer.value));
}
std::string textOf(const ConfigKeyValue& answer) {
    return textOf(answer.key) + ": " + textOf(answer.value);
}
std::string textOf(const HidlFreqListItem& answer) {
    // All five bytes of the label travel.
    const std::string label(answer.label.data(), answer.label.data() + answer.label.size());
    return '{' + std::to_string(answer.channel) + ' ' + std::to_string(answer.frequency) + ' ' +
           std::to_string(answer.bandwidth) + ' ' + printable(label) + ' ' +
           std::to_string(answer.modulation) + '}';
}
std::string textOf(const hidl_vec<uint8_t>& answer) {
    return bytesText({reinterpret_cast<const char*>(answer.data()), answer.size()});
}

std::string textOf(const hidl_memory& answer) {
    if (!answer.valid() && answer.size() == 0) {
        return bytesText("");
    }
    const sp<IMemory> mapped = ::android::hardware::mapMemory(answer);
    if (mapped == nullptr) {
        return "memory that cannot be mapped";
    }
    const auto size = mapped->getSize();
    const auto address = mapped->getPointer();
    if (!size.isOk() || !address.isOk() || uint64_t{size} != answer.size()) {
        return "memory of another size than it says";
    }
    static_cast<void>(mapped->read().isOk());
    const void* const bytes = address;
    std::string text = bytesText({static_cast<const char*>(bytes), size_t{answer.size()}});
    static_cast<void>(mapped->commit().isOk());
    return text;
}

std::string textOfFlag(bool value) {
    return textOf(OptionalBool{true, value});
}
std::string textOfNumber(int32_t value) {
    return textOf(OptionalInt32{true, value});
}
std::string textOfText(const std::string& value) {
    return textOf(OptionalString{true, value});
}

void check(const Questions& questions) {
    constexpr int kMostShown = 20;
    int wrong = 0;
    for (const Question& question : questions) {
        const std::string answer = question.ask();
        if (answer == question.expected) {
            continue;
        }
        if (++wrong <= kMostShown) {
            ADD_FAILURE() << question.call << " answers\n  " << answer << "\nand the set says\n  "
                          << question.expected;
        }
    }
    EXPECT_LE(wrong, kMostShown) << "wrong answers in all: " << wrong << " of " << questions.size();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
