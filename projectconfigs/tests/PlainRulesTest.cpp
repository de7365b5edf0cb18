#include "projectconfigs/tests/PlainRules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/tests/ProjectFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

constexpr unsigned int kRounds = 3000;

// A dump in the order that the stores keep.
std::string dumpOf(const plain::Items& items, const std::string& indent) {
    std::vector<std::pair<plain::Items::key_type, std::string>> ordered(items.begin(), items.end());
    const auto rank = [](const auto& item) {
        const auto& [section, key] = item.first;
        return std::tuple(section.size(), section, key.size(), key);
    };
    std::sort(ordered.begin(), ordered.end(),
              [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
    std::string text;
    for (const auto& [name, value] : ordered) {
        text.append(indent).append(name.first).append(":").append(name.second);
        text.append("=").append(value).append("\n");
    }
    return text;
}

TEST(PlainRulesTest, ProjectParserAgreesOnRandomFiles) {
    mlk::testing::LogCapture quiet;
    ProjectFiles files;
    files.writeSet("");
    for (unsigned int seed = 0; seed < kRounds; ++seed) {
        const std::string text = plain::randomFile(seed);
        files.write("model/A.ini", text);
        files.update();
        quiet.clear();
        const std::string dump = files.dump();
        const std::string expected = dumpOf(plain::projectItems(text), "    ");
        const std::string sources = "  Board ini file: \n";
        ASSERT_EQ(dump.substr(dump.find(sources) + sources.size()), expected) << text;
    }
}

TEST(PlainRulesTest, IniProjectParserAgreesOnRandomFiles) {
    mlk::testing::LogCapture quiet;
    const mlk::testing::TempDir dir;
    for (unsigned int seed = 0; seed < kRounds; ++seed) {
        const std::string text = plain::randomFile(seed);
        IniProjectParser parser;
        parser.update(dir.write("aux.ini", text).c_str());
        quiet.clear();
        std::ostringstream dump;
        parser.dump(dump);
        const std::string items = dumpOf(plain::auxiliaryItems(text), "        ");
        ASSERT_EQ(dump.str(), "  IniProjectParser deatil:\n" +
                                      (items.empty() ? "" : "    File:aux.ini\n" + items))
                << text;
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
