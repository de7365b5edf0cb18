// The chain of project files: project_id.bin, board_id.bin, customer.ini, the system file sys.ini,
// the project file a.ini and the board file b.ini. They name each other by "/tvconfigs/sys.ini" and
// so on.

#include <algorithm>
#include <sstream>

#include "host/testing/TempDir.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "projectconfigs/BoardID.h"
#include "projectconfigs/ProjectID.h"
#include "projectconfigs/ProjectParser.h"
#include "projectconfigs/testing/PlainChain.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;
using fuzzing::requireEqual;

namespace {

enum File : size_t { PROJECT_ID, BOARD_ID, CUSTOMER, SYSTEM, PROJECT, BOARD, FILES };

struct Set {
    const mlk::testing::TempDir dir;
    const std::string tvconfigs = dir.mkdir("tvconfigs");
    const std::string tvdata = dir.mkdir("tvdata");
    const std::string impdata = dir.mkdir("impdata");
};

const Set& set() {
    static const Set theSet;
    return theSet;
}

std::string dumpOf(const ProjectParser& parser) {
    std::ostringstream out;
    parser.dump(out);
    return out.str();
}

std::string joined(const std::vector<std::string>& list) {
    std::string text;
    for (const std::string& entry : list) {
        text += entry + "\n";
    }
    return text;
}

void compare(const ProjectParser& parser, const plain::Chain& chain) {
    requireEqual("the dump", dumpOf(parser), chain.dump());
    requireEqual("the customer", parser.getCustomerId(), chain.customerId());
    fuzzing::require(parser.getProjectMaxIdx() == chain.maxIdx(), "the highest index");
    std::vector<std::string> list;
    parser.getProjectIniList(list);
    requireEqual("the list of projects", joined(list), joined(chain.iniList()));
    std::map<std::string, std::map<std::string, std::string>> categories;
    for (const auto& [name, value] : chain.items()) {
        requireEqual("an item", parser.getInfo(ConfigKey(name.first, name.second)), value);
        categories[name.first][name.second] = value;
    }
    for (const auto& [category, infos] : categories) {
        fuzzing::require(parser.getInfosByCategory(category) == infos, "the items of a section");
    }
}

// True if a reader gets every part of the item as it was written.
bool survives(const plain::Items::value_type& item) {
    const auto& [name, value] = item;
    const std::string line = name.second + "=" + value;
    const std::string text = name.first + "\n" + line + "\n";
    const plain::Items again = plain::projectItems(text);
    return !name.first.empty() && name.first[0] == '[' && again.size() == 1 &&
           *again.begin() == item && value[0] != '/';
}

// Items dumped in the form of a project file are read as the same items.
void parseAgain(const plain::Items& items) {
    std::string text;
    plain::Items kept;
    for (const auto& item : items) {
        if (survives(item)) {
            kept.insert(item);
            text += item.first.first + "\n" + item.first.second + "=" + item.second + "\n";
        }
    }
    fuzzing::writeFile(set().tvconfigs + "/sys2.ini", "Model_1=/tvconfigs/again.ini");
    fuzzing::writeFile(set().tvconfigs + "/again.ini", text);
    fuzzing::writeFile(set().tvconfigs + "/customer2.ini", "SYS_INI=/tvconfigs/sys2.ini");
    ProjectParser parser("/d", set().tvconfigs.c_str(), "/i");
    parser.update((set().tvconfigs + "/customer2.ini").c_str(), 1, "DEFAULT_BOARD_ID");
    const std::string dump = dumpOf(parser);
    const std::string lastSource = "  Board ini file: \n";
    requireEqual("the dump, read again", dump.substr(dump.find(lastSource) + lastSource.size()),
                 plain::dumpOf(kept, "    "));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const fuzzing::Files files(data, size, FILES);
    files.put(PROJECT_ID, set().impdata + "/project_id.bin");
    files.put(BOARD_ID, set().impdata + "/board_id.bin");
    files.put(CUSTOMER, set().tvconfigs + "/customer.ini");
    files.put(SYSTEM, set().tvconfigs + "/sys.ini");
    files.put(PROJECT, set().tvconfigs + "/a.ini");
    files.put(BOARD, set().tvconfigs + "/b.ini");

    const ProjectID projectId(set().impdata, 1);
    fuzzing::require(projectId.Get() == plain::projectIdOf(files.text(PROJECT_ID)), "the index");
    const BoardID boardId(set().impdata);
    requireEqual("the board", boardId.Get(), plain::boardIdOf(files.text(BOARD_ID)));

    const std::string customer = set().tvconfigs + "/customer.ini";
    const int index = static_cast<int>(projectId.Get());
    ProjectParser parser(set().tvdata.c_str(), set().tvconfigs.c_str(), set().impdata.c_str());
    plain::Chain chain(set().tvdata, set().tvconfigs, set().impdata);
    parser.update(customer.c_str(), index, boardId.Get());
    chain.update(customer, index, boardId.Get());
    compare(parser, chain);
    // Another project on the same board, as a client selects it.
    parser.update(customer.c_str(), 2, "");
    chain.update(customer, 2, "");
    compare(parser, chain);
    parser.dump();
    parser.dumpDetail();
    parseAgain(chain.items());
    return 0;
}
