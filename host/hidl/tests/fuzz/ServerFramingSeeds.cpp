// Writes inputs for the fuzzer of calls: sound calls, one and several, and calls with false sizes.
// Argument: the folder.

#include <string>

#include "host/hidl/tests/RawClient.h"
#include "host/testing/fuzz/Fuzzing.h"

using namespace mlk::test;
namespace fuzzing = mlk::fuzzing;

namespace {

constexpr char kPieceSize = 7;

class Seeds {
  public:
    explicit Seeds(std::string folder) : mFolder(std::move(folder)) {}

    void write(const std::string& name, const std::vector<RawMessage>& messages) const {
        std::string bytes(2, kPieceSize);
        bytes[0] = 0;
        for (const RawMessage& message : messages) {
            bytes[0] = static_cast<char>(bytes[0] + static_cast<char>(message.descriptors.size()));
            const std::vector<uint8_t> one = message.bytes();
            bytes.append(one.begin(), one.end());
        }
        fuzzing::writeFile(mFolder + "/" + name, bytes);
    }

  private:
    const std::string mFolder;
};

RawMessage oneway(RawMessage message) {
    message.header.type = MessageType::ONEWAY_CALL;
    return message;
}

}  // namespace

int main(int argc, char** argv) {
    fuzzing::require(argc == 2, "the argument is a folder");
    const Seeds seeds(argv[1]);
    for (uint32_t code = 1; code <= 30; ++code) {
        RawMessage call = callOf(code);
        for (uint32_t number = 0; number < 14; ++number) {
            call.number(number);
        }
        seeds.write("code." + std::to_string(code), {call});
    }
    for (const uint32_t code : {0x0f43484eU, 0x0f444247U, 0x0f445343U, 0x0f485348U, 0x0f504e47U,
                                0x0f524546U, 0x0f535953U}) {
        seeds.write("base." + std::to_string(code), {callOf(code)});
    }
    RawMessage poke = oneway(callOf(POKE));
    poke.number(3);
    seeds.write("text", {textCall("a text")});
    seeds.write("long", {textCall(std::string(3000, 'x'))});
    seeds.write("several", {textCall("one"), poke, bytesCall(100), textCall("four")});
    seeds.write("large", {bytesCall(20000), bytesCall(20000), bytesCall(20000)});
    // The fuzzer supplies the descriptors.
    seeds.write("descriptors", {fdCall({0, 0})});
    seeds.write("listener", {listenCall(0), textCall("after")});

    RawMessage lie = textCall("a lie");
    lie.dataSize = 0xffffffff;
    seeds.write("lie.data", {lie, textCall("after")});
    lie = textCall("a lie");
    lie.objectCount = 0x08000000;
    seeds.write("lie.objects", {lie, textCall("after")});
    lie = textCall("a lie");
    lie.fdCount = 253;
    seeds.write("lie.descriptors", {lie, textCall("after")});
    lie = textCall("a lie");
    lie.bodySize = uint64_t{1} << 32U;
    seeds.write("lie.body", {lie});
    lie = callOf(LISTENERS);
    lie.number(0);
    lie.number(1);
    seeds.write("lie.interfaces", {lie, textCall("after")});
    lie = textCall("a lie");
    lie.objects[1].record.length = uint64_t{1} << 63U;
    seeds.write("lie.length", {lie, textCall("after")});
    lie = textCall("a lie");
    lie.objects[1].record.parentOffset = ~uint64_t{7};
    seeds.write("lie.offset", {lie, textCall("after")});
    return 0;
}
