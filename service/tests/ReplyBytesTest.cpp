// The bytes of the real process's replies: they contain only the values of the fields.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/hidl/src/MessageReader.h"
#include "host/hidl/tests/RawClient.h"
#include "host/testing/HostSet.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::hardware::hidl_vec;
using ::android::hardware::transport::alignedToEight;
using ::mlk::test::Header;
using ::mlk::test::RawClient;
using ::mlk::test::RawMessage;
using ::mlk::test::WireObject;
using ::mlk::testing::HostSet;
using ::testing::IsEmpty;

/** A run of bytes in a struct that belongs to no field. */
struct Gap {
    size_t offset;
    size_t size;
};

constexpr size_t kTextPadding = 13; /**< of a hidl_string or hidl_vec: after its flag */
constexpr Gap kEndOfText{kTextPadding, 3};

/** The gaps of an answer's struct of this size, or of each item of a list. */
std::vector<Gap> gapsOf(size_t size) {
    static const std::map<size_t, std::vector<Gap>> kGaps{
            {sizeof(OptionalBool), {}},
            {sizeof(OptionalInt32), {{1, 3}}},
            {sizeof(OptionalString), {{1, 7}, {8 + kTextPadding, 3}}},
            {sizeof(hidl_vec<uint8_t>), {kEndOfText}},
            {sizeof(::android::hardware::hidl_memory), {{9, 7}, {24 + kTextPadding, 3}}}};
    const auto found = kGaps.find(size);
    return found == kGaps.end() ? std::vector<Gap>() : found->second;
}
const std::vector<Gap> kGapsOfChannel{{2, 2}, {17, 3}};

/** The address ranges of a process. */
class AddressSpace {
  public:
    explicit AddressSpace(pid_t process) {
        std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
        for (std::string line; std::getline(maps, line);) {
            // Ranges that cannot be read hold nothing; a sanitizer reserves large ones.
            if (line.find(" r") == std::string::npos) {
                continue;
            }
            const size_t dash = line.find('-');
            const uint64_t begin = std::stoull(line.substr(0, dash), nullptr, 16);
            const uint64_t end = std::stoull(line.substr(dash + 1), nullptr, 16);
            // A range larger than any memory holds a sanitizer's notes about memory.
            constexpr uint64_t kLargest = uint64_t{1} << 36U;
            if (end - begin < kLargest) {
                mRanges.emplace_back(begin, end);
            }
        }
    }
    bool holds(uint64_t address) const {
        return std::any_of(mRanges.begin(), mRanges.end(), [&](const auto& range) {
            return address >= range.first && address < range.second;
        });
    }

  private:
    std::vector<std::pair<uint64_t, uint64_t>> mRanges;
};

class ReplyBytesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        mSet.copyFrom(::mlk::testing::sourceDir() + "/samples/partitions");
        mAllocator = startAllocator();
        // Newly allocated memory has a known content other than zero.
        mServer = std::make_unique<ServiceProcess>(
                std::map<std::string, std::string>{{"MALLOC_PERTURB_", "85"}});
        ASSERT_TRUE(mServer->waitUntilRegistered()) << mServer->process().err();
    }

    /** A call with a few numbers; a method without parameters ignores them. */
    static RawMessage call(const std::string& interface, uint32_t code,
                           const std::vector<uint32_t>& numbers) {
        RawMessage message;
        message.header.code = code;
        message.text(interface);
        for (const uint32_t number : numbers) {
            message.number(number);
        }
        return message;
    }

    /** The body of a good reply; empty for any other. */
    static std::optional<std::vector<uint8_t>> answer(RawClient& client, const RawMessage& message,
                                                      Header* header) {
        ::android::hardware::transport::MessageReader reader(
                ::android::hardware::transport::kMaxReplyBody);
        if (!client.send(message) ||
            reader.read(client.socket(), 0, 0) !=
                    ::android::hardware::transport::MessageReader::Result::MESSAGE) {
            ADD_FAILURE() << "no reply to " << message.header.code;
            return {};
        }
        const auto reply = reader.take();
        *header = reply.header();
        if (header->code != 0 || header->objectCount == 0) {
            return {};
        }
        return std::vector<uint8_t>(reply.body(), reply.body() + header->bodySize);
    }

    /** The bytes of a reply that belong to no field, a line each. */
    std::vector<std::string> leaks(const std::vector<uint8_t>& body, const Header& header,
                                   size_t channelSize) {
        std::vector<std::string> found;
        const AddressSpace addresses(mServer->process().pid());
        const size_t records = alignedToEight(header.dataSize);
        size_t start = records + header.objectCount * sizeof(WireObject);
        for (uint32_t i = 0; i < header.objectCount; ++i) {
            WireObject record{};
            memcpy(&record, &body[records + i * sizeof(record)], sizeof(record));
            for (size_t word = 0; word + 8 <= record.length; word += 8) {
                uint64_t value = 0;
                memcpy(&value, &body[start + word], sizeof(value));
                if (addresses.holds(value)) {
                    found.push_back("address at " + std::to_string(word));
                }
            }
            const bool isList = i == 1 && channelSize != 0;
            const size_t step = isList ? channelSize : record.length;
            for (size_t item = 0; step != 0 && item + step <= record.length; item += step) {
                for (const Gap& gap : isList   ? kGapsOfChannel
                                      : i == 0 ? gapsOf(record.length)
                                               : std::vector<Gap>()) {
                    const auto* const bytes = &body[start + item + gap.offset];
                    if (std::any_of(bytes, bytes + gap.size, [](uint8_t b) { return b != 0; })) {
                        found.push_back("padding at " + std::to_string(item + gap.offset));
                    }
                }
            }
            start += alignedToEight(record.length);
        }
        return found;
    }

    HostSet mSet;
    std::unique_ptr<::mlk::testing::Process> mAllocator;
    std::unique_ptr<ServiceProcess> mServer;
};

TEST_F(ReplyBytesTest, MethodsThatTakeNumbers) {
    const std::map<std::string, uint32_t> interfaces{{IMlkTvConfigs::descriptor, 55},
                                                     {IMlkFrameworkConfigs::descriptor, 25},
                                                     {IMlkProjectConfigs::descriptor, 52}};
    size_t answers = 0;
    for (const auto& [interface, methods] : interfaces) {
        RawClient client(mSet.runtime(), interface);
        ASSERT_TRUE(client.hello());
        // Twice: the second call finds what the first left on the stack.
        for (uint32_t code = 1; code <= 2 * methods; ++code) {
            Header header{};
            const auto body = answer(
                    client, call(interface, (code - 1) % methods + 1, {1, 1, 1, 1}), &header);
            if (body.has_value()) {
                ++answers;
                EXPECT_THAT(leaks(*body, header, 0), IsEmpty())
                        << interface << " " << (code - 1) % methods + 1;
            }
        }
    }
    EXPECT_GT(answers, 200U);
}

TEST_F(ReplyBytesTest, ListOfChannels) {
    constexpr uint32_t kGetFreqTableList = 38;
    RawClient client(mSet.runtime(), IMlkProjectConfigs::descriptor);
    ASSERT_TRUE(client.hello());
    size_t lists = 0;
    for (uint32_t country = 0; country < 60; ++country) {
        for (uint32_t type = 0; type < 4; ++type) {
            Header header{};
            const auto body = answer(
                    client,
                    call(IMlkProjectConfigs::descriptor, kGetFreqTableList, {country, type, 1}),
                    &header);
            ASSERT_TRUE(body.has_value());
            lists += body->size() > 200 ? 1 : 0;
            EXPECT_THAT(leaks(*body, header, sizeof(HidlFreqListItem)), IsEmpty())
                    << country << " " << type;
        }
    }
    EXPECT_GT(lists, 0U);
}

TEST_F(ReplyBytesTest, TextsItemsAndSharedMemory) {
    constexpr uint32_t kGetConfig = 7;
    constexpr uint32_t kGetVendorPartitionFile = 43;
    constexpr uint32_t kGetConfigsByCategory = 44;
    constexpr uint32_t kIsFileExist = 45;
    RawClient client(mSet.runtime(), IMlkProjectConfigs::descriptor);
    ASSERT_TRUE(client.hello());
    const auto textCall = [](uint32_t code, const std::vector<std::string>& texts) {
        RawMessage message = call(IMlkProjectConfigs::descriptor, code, {});
        std::vector<uint8_t> header(16 * texts.size());
        for (size_t i = 0; i < texts.size(); ++i) {
            header[16 * i + 8] = static_cast<uint8_t>(texts[i].size());
        }
        (void)message.buffer(header);
        for (size_t i = 0; i < texts.size(); ++i) {
            std::vector<uint8_t> bytes(texts[i].begin(), texts[i].end());
            bytes.push_back(0);
            (void)message.embedded(bytes, 0, 16 * i);
        }
        return message;
    };
    const std::string file = mSet.dir().write("tvdata/file", "content");
    const std::vector<RawMessage> calls{textCall(kGetConfig, {"[PANEL]", "m_pPanelName"}),
                                        textCall(kGetConfigsByCategory, {"[PANEL]"}),
                                        textCall(kGetConfigsByCategory, {"[LiveTV]"}),
                                        textCall(kIsFileExist, {file}),
                                        textCall(kGetVendorPartitionFile, {file})};
    for (int round = 0; round < 3; ++round) {
        for (const RawMessage& message : calls) {
            Header header{};
            const auto body = answer(client, message, &header);
            ASSERT_TRUE(body.has_value()) << message.header.code;
            EXPECT_THAT(leaks(*body, header, 0), IsEmpty()) << message.header.code;
        }
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
