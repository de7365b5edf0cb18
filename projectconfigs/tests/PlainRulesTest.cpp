#include "projectconfigs/testing/PlainRules.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/tests/ProjectFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

constexpr unsigned int kRounds = 3000;

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
        const std::string expected = plain::dumpOf(plain::projectItems(text), "    ");
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
        const std::string items = plain::dumpOf(plain::auxiliaryItems(text), "        ");
        ASSERT_EQ(dump.str(), "  IniProjectParser deatil:\n" +
                                      (items.empty() ? "" : "    File:aux.ini\n" + items))
                << text;
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
