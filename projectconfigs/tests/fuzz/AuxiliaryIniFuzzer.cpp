// Auxiliary files (audio, karaoke, keys, DDC/CI): two files of one name in different folders. The
// first one that is loaded counts.

#include <sstream>

#include "host/testing/TempDir.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/testing/PlainRules.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;

namespace {

struct Set {
    const mlk::testing::TempDir dir;
    const std::string first = dir.mkdir("1") + "/aux.ini";
    const std::string second = dir.mkdir("2") + "/aux.ini";
};

std::string dumpOf(const IniProjectParser& parser) {
    std::ostringstream out;
    parser.dump(out);
    return out.str();
}

std::string dumpOf(const plain::Items& items) {
    const std::string file = items.empty() ? "" : "    File:aux.ini\n";
    return "  IniProjectParser deatil:\n" + file + plain::dumpOf(items, "        ");
}

// Items that are written in full are read as the same items.
void parseAgain(const plain::Items& items, const std::string& path) {
    plain::Items kept;
    std::string text;
    for (const auto& item : items) {
        const auto& [name, value] = item;
        const std::string lines = name.first + "\n" + name.second + "=" + value + "\n";
        const plain::Items again = plain::auxiliaryItems(lines);
        if (again.size() == 1 && *again.begin() == item) {
            kept.insert(item);
            text += lines;
        }
    }
    fuzzing::writeFile(path, text);
    IniProjectParser parser;
    parser.update(path.c_str());
    fuzzing::requireEqual("the dump, read again", dumpOf(parser), dumpOf(kept));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Set set;
    const fuzzing::Files files(data, size, 2);
    files.put(0, set.first);
    files.put(1, set.second);
    IniProjectParser parser;
    parser.update(set.first.c_str());
    parser.update(set.second.c_str());

    plain::Items items = plain::auxiliaryItems(files.text(0));
    if (items.empty()) {
        items = plain::auxiliaryItems(files.text(1));
    }
    fuzzing::requireEqual("the dump", dumpOf(parser), dumpOf(items));
    fuzzing::require(parser.findItem("aux.ini") == !items.empty(), "a file with items is held");
    for (const auto& [name, value] : items) {
        fuzzing::requireEqual("an item",
                              parser.getInfo("aux.ini", ConfigKey(name.first, name.second)), value);
    }
    parser.dumpDetail();
    parseAgain(items, set.first);
    return 0;
}
