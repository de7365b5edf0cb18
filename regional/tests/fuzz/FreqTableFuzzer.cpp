// Channel plans.

#include "host/testing/TempDir.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "regional/FreqTableParser.h"
#include "regional/testing/PlainRegional.h"
#include "regional/tests/RegionalFiles.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;
using vendor::morlak::mlkconfigs::V1_0::HidlFreqListItem;

namespace {

std::string textOf(const std::vector<HidlFreqListItem>& items) {
    std::string text;
    for (const HidlFreqListItem& item : items) {
        text += toString(item) + "\n";
    }
    return text;
}

// Writes the channels as a table, from which a reader gets the same channels. Leaves out those that
// no line can hold.
std::string tableOf(std::vector<HidlFreqListItem>& items) {
    std::vector<HidlFreqListItem> kept;
    std::string text;
    plain::Names names = plain::modulations();
    for (const HidlFreqListItem& item : items) {
        const std::string label(reinterpret_cast<const char*>(item.label.data()));
        const std::string modulation = plain::firstNameOf(names, item.modulation);
        const std::string line =
                std::to_string(item.channel) + " " + std::to_string(item.bandwidth) + " " +
                std::to_string(item.frequency) + " " + label + " " + modulation + "\n";
        if (line.size() < 50 && textOf(plain::channels(line, names)) == textOf({item})) {
            kept.push_back(item);
            text += line;
        }
    }
    items = kept;
    return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const mlk::testing::TempDir dir;
    static const std::string path = dir.path("table");
    RegionalPeer::forget();
    const std::string text(reinterpret_cast<const char*>(data), size);
    fuzzing::writeFile(path, text);
    plain::Names names = plain::modulations();
    std::vector<HidlFreqListItem> items;
    // Twice: the second reading knows the modulations that the first one added.
    for (int round = 0; round < 2; ++round) {
        fuzzing::require(processParser().ParseFreqTable(path, items), "any file is a table");
        fuzzing::requireEqual("the channels", textOf(items), textOf(plain::channels(text, names)));
    }
    RegionalPeer::forget();
    fuzzing::writeFile(path, tableOf(items));
    std::vector<HidlFreqListItem> again;
    processParser().ParseFreqTable(path, again);
    fuzzing::requireEqual("the channels, written and read again", textOf(again), textOf(items));
    return 0;
}
