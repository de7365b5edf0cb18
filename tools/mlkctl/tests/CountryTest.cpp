// Countries by name, and what show prints about the country of a set.

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "tools/common/FactTable.h"
#include "tools/common/Wrap.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::HostSet;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using Words = std::vector<std::string>;

// A path as the table breaks it: that of the folder of a test may be long.
std::string inTheTable(const std::string& path) {
    constexpr size_t kColumn = 20;
    std::string lines;
    for (const std::string& line : wrapped(path, kFactWidth - kColumn, "/")) {
        lines += (lines.empty() ? "" : "\n" + std::string(kColumn, ' ')) + line;
    }
    return lines;
}

TEST(CountryTest, MayBeGivenByNameOrNumber) {
    Script script;
    const auto arrives = [&](const Words& words, const Words& call) {
        EXPECT_EQ(runMlkctl(words, script).status, 0);
        EXPECT_EQ(script.calls.back(), call);
    };
    arrives({"call", "IMlkProjectConfigs", "setCountryId", "GERMANY"}, {"setCountryId", "14"});
    arrives({"call", "IMlkProjectConfigs", "setCountryId", "14"}, {"setCountryId", "14"});
    arrives({"call", "IMlkProjectConfigs", "setCountryId", "DEFAULT"}, {"setCountryId", "-1"});
    arrives({"call", "IMlkProjectConfigs", "setCountryId", "9999"}, {"setCountryId", "9999"});
    arrives({"call", "IMlkProjectConfigs", "getFreqTableList", "USA", "DTV_CABLE", "HRC"},
            {"getFreqTableList", "44", "1", "2"});
    const Outcome batch =
            runMlkctl({"batch"}, script,
                      R"(["IMlkProjectConfigs","getFreqTableList","MALI","ATV_ANTENNA",0])");
    EXPECT_EQ(batch.status, 0);
    EXPECT_EQ(script.calls.back(), (Words{"getFreqTableList", "162", "2", "0"}));
}

TEST(CountryTest, AWrongNameIsToldSo) {
    Script script;
    const Outcome outcome =
            runMlkctl({"call", "IMlkProjectConfigs", "setCountryId", "Germani"}, script);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err,
              "mlkctl: IMlkProjectConfigs setCountryId: COUNTRY is a country's name or a number "
              "from -2147483648 to 2147483647, not \"Germani\"; did you mean GERMANY?\n");
    EXPECT_TRUE(script.calls.empty());
}

// Fakes of a set with a saved country, and the maps of that country.
class ShowCountryTest : public ::testing::Test {
  protected:
    ShowCountryTest() {
        mSet.dir().write("tvconfigs/countries.xml",
                         "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>USA</COUNTRY_NAME>"
                         "<TV_SYSTEM>ATSC</TV_SYSTEM><TV_CONFIG>x</TV_CONFIG>"
                         "</COUNTRY_TVCONFIG_MAP>");
        // Every text that the fakes answer is this path.
        mScript.text =
                mSet.dir().write("tvconfigs/tvsys.xml",
                                 "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>"
                                 "<TvSystemConfigration></TvSystemConfigration>");
        mScript.channels.resize(3);
        saved("COUNTRY_ID=44\n");
    }
    // Sets the content of the file of the saved country.
    void saved(const std::string& text) { mScript.bytes.assign(text.begin(), text.end()); }
    Outcome show(const Words& options = {}) {
        Words words = {"show"};
        words.insert(words.end(), options.begin(), options.end());
        return runMlkctl(words, mScript);
    }

    HostSet mSet;
    Script mScript;
};

TEST_F(ShowCountryTest, NamesTheCountryAndWhatItDecides) {
    const Outcome outcome = show();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, HasSubstr("\nCountry\n"
                                       "  Name              USA\n"
                                       "  Number            44\n"
                                       "  TV system         ATSC\n"
                                       "  TV configuration  " +
                                       inTheTable(mScript.text) +
                                       "\n"
                                       "  Channels          DTV_ANTENNA: 3\n"
                                       "                    DTV_CABLE AUTO: 3\n"
                                       "                    DTV_CABLE STD: 3\n"
                                       "                    DTV_CABLE HRC: 3\n"
                                       "                    DTV_CABLE IRC: 3\n"
                                       "                    ATV_ANTENNA: 3\n"
                                       "                    ATV_CABLE AUTO: 3\n"
                                       "                    ATV_CABLE STD: 3\n"
                                       "                    ATV_CABLE HRC: 3\n"
                                       "                    ATV_CABLE IRC: 3\n"
                                       "  Languages         one, two\n\n"));
    EXPECT_THAT(
            show({"--json"}).out,
            HasSubstr(
                    R"("country":{"name":"USA","number":44,"tvSystem":"ATSC",)"
                    R"("tvConfiguration":")" +
                    mScript.text +
                    R"(","channels":{"DTV_ANTENNA":3,"DTV_CABLE AUTO":3,)"
                    R"("DTV_CABLE STD":3,"DTV_CABLE HRC":3,"DTV_CABLE IRC":3,)"
                    R"("ATV_ANTENNA":3,"ATV_CABLE AUTO":3,"ATV_CABLE STD":3,)"
                    R"("ATV_CABLE HRC":3,"ATV_CABLE IRC":3},"languages":["one","two"]},"power")"));
}

TEST_F(ShowCountryTest, AsksForTheFileOfTheCountryAndItsPlans) {
    show();
    const auto asked = [&](const Words& call) {
        return std::count(mScript.calls.begin(), mScript.calls.end(), call) != 0;
    };
    EXPECT_TRUE(asked({"getTvFile", mScript.text + "/tvsysmap/country_id.bin"}));
    EXPECT_TRUE(asked({"getConfig", "[COUNTRY]", "tvSysMap"}));
    EXPECT_TRUE(asked({"getConfig", "[LiveTV]", "TvConfig"}));
    EXPECT_TRUE(asked({"getFreqTableList", "44", "0", "0"}));
    EXPECT_TRUE(asked({"getFreqTableList", "44", "3", "3"}));
}

TEST_F(ShowCountryTest, PlansWithoutChannelsAreLeftOut) {
    mScript.channels.resize(0);
    EXPECT_THAT(show().out, HasSubstr("\n  Channels          -\n"));
    EXPECT_THAT(show({"--json"}).out, HasSubstr(R"("channels":{},)"));
}

TEST_F(ShowCountryTest, WithoutASavedCountry) {
    for (const char* text : {"", "nothing\n", "COUNTRY_ID\n", "COUNTRY_ID=-1\n"}) {
        saved(text);
        const Outcome outcome = show();
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, AllOf(HasSubstr("\nCountry\n  Name              (none saved)\n"),
                                       HasSubstr("  TV system         (none saved)\n"),
                                       HasSubstr("  TV configuration  " + inTheTable(mScript.text)),
                                       HasSubstr("  Channels          (none saved)\n")))
                << text;
    }
    EXPECT_THAT(show({"--json"}).out, HasSubstr(R"("country":{"name":null,"number":null,)"));
}

TEST_F(ShowCountryTest, ACountryThatNobodyKnows) {
    saved("# ours\nCOUNTRY_ID=161\nCOUNTRY_ID=44\n");
    EXPECT_THAT(show().out, HasSubstr("\nCountry\n"
                                      "  Name              (unknown)\n"
                                      "  Number            161\n"
                                      "  TV system         -\n"));
}

TEST_F(ShowCountryTest, MapsThatCannotBeRead) {
    mSet.dir().write("tvconfigs/countries.xml", "<");
    EXPECT_THAT(show().out, HasSubstr("\n  TV system         (not readable)\n"));
    mScript.text.clear();
    mScript.emptyTexts = true;
    const Outcome outcome = show();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("\n  TV system         -\n")) << "a project without maps";
    EXPECT_THAT(outcome.out, Not(HasSubstr("(not readable)")));
}

TEST_F(ShowCountryTest, AnAnswerThatFailsIsSaidSo) {
    mScript.failing = {"getTvFile"};
    EXPECT_THAT(show().out, AllOf(HasSubstr("\nCountry\n  Name              (no answer)\n"),
                                  HasSubstr("  Channels          (no answer)\n")));
}

}  // namespace

}  // namespace mlk::ctl
