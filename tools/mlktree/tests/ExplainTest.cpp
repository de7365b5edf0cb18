// explain on a small tree that has each way in which a value can come about.
#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

class ExplainTest : public ::testing::Test {
  protected:
    ExplainTest() {
        write("tvconfigs/customer.ini", "CUSTOMER_ID = A\nSYS_INI = /tvconfigs/system.ini\n");
        write("tvconfigs/system.ini", "Model_1 = /tvconfigs/m1.ini\nModel_2 = /tvconfigs/m2.ini\n");
        write("tvconfigs/m1.ini",
              "[PANEL]\nm_pPanelName = \"P1\"\nm_pPanelName = \"P2\"  # pilot run\nRAW = a\xff\n"
              "[LiveTV]\nTvConfig = /tvconfigs/m.config\nMODE = 1\n"
              "[COUNTRY]\ntvSysMap = /tvconfigs/sys.xml\nCOUNTRY_PATH = /tvconfigs/list.txt\n"
              "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/a/d.ini\n"
              "AUDIO_CONFIG_IC_PATH = /tvconfigs/b/d.ini\n"
              "AUDIO_CONFIG_AVR_PATH = /tvconfigs/audio/avr.ini\n"
              "[SSC]\nm_pSSCName = /tvconfigs/gone.ini\n");
        write("tvconfigs/m2.ini", "[PANEL]\nm_pPanelName = Q\n");
        write("tvconfigs/board/b.ini", "[LiveTV]\nMODE = 2\n[BOARD]\nNAME = B\n");
        write("tvconfigs/sys.xml",
              "<CountryTvSysMapXML>/tvconfigs/map.xml</CountryTvSysMapXML>\n"
              "<TvSystemConfigration>\n<TvSystem type=\"S\">\n"
              "<Item category=\"[LiveTV]\" key=\"MODE\" value=\"3\"/>\n"
              "<Item category=\"[LiveTV]\" key=\"TvConfig\" value=\"/tvconfigs/s.config\"/>\n"
              "<Item category=\"[LiveTV]\" key=\"NEW\" value=\"x\"/>\n"
              "</TvSystem>\n</TvSystemConfigration>\n");
        write("tvconfigs/map.xml",
              "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>ROMANIA</COUNTRY_NAME><TV_SYSTEM>S</TV_SYSTEM>\n"
              "<TV_CONFIG>/tvconfigs/r.config</TV_CONFIG></COUNTRY_TVCONFIG_MAP>\n"
              "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>OMAN</COUNTRY_NAME></COUNTRY_TVCONFIG_MAP>\n");
        write("tvconfigs/list.txt", "ROMANIA\n");
        write("tvconfigs/r.config",
              "persist.vendor.mlk.tv.enable_dtv=false\n"
              "persist.vendor.mlk.tv.dtv_cable=true\npersist.vendor.mlk.tv.enable_pvr=1\n");
        write("tvconfigs/a/d.ini", "[SPEAKER]\nDELAY = 10\n");
        write("tvconfigs/b/d.ini", "[SPEAKER]\nDELAY = 100\n");
        write("tvconfigs/audio/audio_hw.ini", "[SPEAKER]\nDELAY = -3\n");
        write("tvconfigs/audio/avr.ini", "[SPEAKER]\nDELAY = 0x10\nONLY = 5\n");
        write("tvconfigs/audio/AVR_V_N.ini", "[SPEAKER]\nDELAY = 7\n");
        write("impdata/project_id.bin", "PROJECT_ID=1\n");
        write("impdata/board_id.bin", "BOARD_ID=/tvconfigs/board/b.ini\n");
        write("data/property/ro.hardware", "hw");
        write("data/property/persist.vendor.mlk.tv.enable_pvr", "0");
        mDir.mkdir("tvdata");
    }

    void write(const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(mDir.path(path)).parent_path());
        mDir.write(path, text);
    }

    Outcome explain(std::vector<std::string> words) const {
        words.insert(words.begin(), "explain");
        return runMlktree(words, mDir.path());
    }
    std::string text(const std::vector<std::string>& words) const {
        const Outcome outcome = explain(words);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.out;
    }
    std::string json(std::vector<std::string> words) const {
        words.insert(words.end(), {"--format", "json"});
        return text(words);
    }
    /** What it says if there is no such thing. */
    std::string missing(const std::vector<std::string>& words) const {
        const Outcome outcome = explain(words);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        return outcome.err;
    }
    std::string refused(const std::vector<std::string>& words) const {
        const Outcome outcome = explain(words);
        EXPECT_EQ(outcome.status, 2) << outcome.out;
        return outcome.err;
    }
    std::set<std::string> files() const {
        std::set<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(mDir.path())) {
            files.insert(entry.path());
        }
        return files;
    }

    testing::QuietLog mQuiet;
    testing::TempDir mDir;
};

TEST_F(ExplainTest, ItemHasAllThatItReplaces) {
    EXPECT_EQ(json({"LiveTV", "MODE"}),
              R"({"section":"[LiveTV]","key":"MODE","value":"3",)"
              R"("origin":{"file":"tvconfigs/sys.xml","line":4,"layer":"country"},)"
              R"("replaced":[)"
              R"({"value":"1","file":"tvconfigs/m1.ini","line":7,"layer":"model"},)"
              R"({"value":"2","file":"tvconfigs/board/b.ini","line":2,"layer":"board"}],)"
              R"("readers":["getConfig"]})"
              "\n");
    EXPECT_EQ(json({"[PANEL]", "m_pPanelName"}),
              R"({"section":"[PANEL]","key":"m_pPanelName","value":"P2",)"
              R"("origin":{"file":"tvconfigs/m1.ini","line":3,"layer":"model"},)"
              R"("replaced":[{"value":"P1","file":"tvconfigs/m1.ini","line":2,"layer":"model"}],)"
              R"("readers":["getPanelName"]})"
              "\n");
    EXPECT_THAT(text({"LiveTV", "MODE"}),
                AllOf(HasSubstr("an item of the board file replaces that of the model file"),
                      HasSubstr("the country's TV system \"S\" replaces it"),
                      HasSubstr("model=1,board=b.ini,country=ROMANIA")));
    EXPECT_THAT(text({"PANEL", "m_pPanelName"}),
                AllOf(HasSubstr("a later line of the same section"), HasSubstr("# pilot run")));
}

TEST_F(ExplainTest, FeatureFileOfTheRecordComesBeforeThatOfTheTvSystem) {
    const std::string item = json({"LiveTV", "TvConfig"});
    EXPECT_THAT(item,
                HasSubstr(R"("value":"/tvconfigs/r.config",)"
                          R"("origin":{"file":"tvconfigs/map.xml","line":2,"layer":"country"})"));
    EXPECT_THAT(item, HasSubstr(R"({"value":"/tvconfigs/m.config","file":"tvconfigs/m1.ini")"));
    EXPECT_THAT(item, HasSubstr(R"({"value":"/tvconfigs/s.config","file":"tvconfigs/sys.xml")"));
    EXPECT_THAT(text({"LiveTV", "TvConfig"}), HasSubstr("the country's record names a TV feature"));
}

TEST_F(ExplainTest, SetIsThatOfTheOptions) {
    EXPECT_THAT(json({"PANEL", "m_pPanelName", "--model", "2"}), HasSubstr(R"("value":"Q")"));
    EXPECT_THAT(json({"LiveTV", "MODE", "--board", "none"}), Not(HasSubstr("board")));
    // OMAN has the record of ROMANIA, whose name contains its own; FRANCE has none.
    EXPECT_THAT(json({"LiveTV", "MODE", "--country", "OMAN"}), HasSubstr(R"("value":"3")"));
    EXPECT_THAT(json({"LiveTV", "MODE", "--country", "FRANCE"}), HasSubstr(R"("value":"2")"));
    write("tvdata/tvsysmap/country_id.bin", "COUNTRY_ID=13\n");  // FRANCE
    EXPECT_THAT(json({"LiveTV", "MODE"}), HasSubstr(R"("value":"2")"));
    write("tvdata/tvsysmap/country_id.bin", "no country\n");
    EXPECT_THAT(json({"LiveTV", "MODE"}), HasSubstr(R"("value":"2")"));
    EXPECT_THAT(refused({"PANEL", "--model", "3"}), HasSubstr("--model 3"));
    EXPECT_THAT(refused({"PANEL", "--customer", "a", "--customer", "b"}), HasSubstr("once"));
    write("impdata/project_id.bin", "PROJECT_ID=9\n");
    EXPECT_THAT(missing({"PANEL", "m_pPanelName"}), HasSubstr("no section [PANEL]"));
    EXPECT_THAT(json({"BOARD", "NAME"}), HasSubstr(R"("value":"B")"));
}

TEST_F(ExplainTest, ChangesNothing) {
    const std::set<std::string> before = files();
    text({});
    text({"feature"});
    text({"audio", "--arc", "--avr-vendor", "V", "--avr-name", "N"});
    text({"country"});
    text({"file", "/tvconfigs/m1.ini"});
    EXPECT_EQ(runMlktree({"show"}, mDir.path()).status, 0);
    EXPECT_EQ(files(), before) << "a service would have saved the country";
    EXPECT_EQ(mDir.read("data/property/persist.vendor.mlk.tv.enable_pvr"), "0");
}

TEST_F(ExplainTest, SectionsAndAllItemsAreArrays) {
    EXPECT_THAT(json({"PANEL"}), AllOf(HasSubstr("[\n{\"section\":\"[PANEL]\",\"key\":\"RAW\""),
                                       HasSubstr(R"("value":"a\udcff")")));
    EXPECT_THAT(json({}), AllOf(HasSubstr(R"("key":"RAW")"), HasSubstr(R"("key":"MODE")")));
    EXPECT_THAT(text({"LiveTV"}), AllOf(HasSubstr("[LiveTV]\n"), HasSubstr("replaces 2 values")));
    EXPECT_EQ(explain({mDir.path()}).out, text({}));
}

TEST_F(ExplainTest, MissingItemsHaveSuggestions) {
    EXPECT_THAT(missing({"PANEL", "m_pPanelNmae"}), HasSubstr("did you mean m_pPanelName?"));
    EXPECT_THAT(missing({"PANLE"}), HasSubstr("did you mean [PANEL]?"));
    EXPECT_THAT(missing({"PANEL", "NAME"}), HasSubstr("; [BOARD] has one of that name"));
    EXPECT_THAT(missing({"LiveTV", "NEW"}),
                AllOf(HasSubstr("tvconfigs/sys.xml:6"), HasSubstr("the service ignores")));
}

// If the name that is asked for is right, that of the file is wrong.
TEST_F(ExplainTest, AKnownNameIsNoMistake) {
    write("tvconfigs/m2.ini",
          "[PANEL]\nm_pPanelNam = Q\nRAW_LEVEL = 1\n# sound\n[ssc]\nm_pSSCName = x\n");
    EXPECT_EQ(missing({"PANEL", "m_pPanelName", "--model", "2"}),
              "mlktree: there is no item [PANEL] m_pPanelName in the set "
              "model=2,board=b.ini; tvconfigs/m2.ini:2 has m_pPanelNam, which is probably "
              "misspelt\n");
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"SSC", "m_pSSCName"}, {"SSC"}}) {
        std::vector<std::string> all = words;
        all.insert(all.end(), {"--model", "2"});
        EXPECT_THAT(missing(all), AllOf(HasSubstr("there is no section [SSC] in "),
                                        EndsWith("; tvconfigs/m2.ini:5 has [ssc], which is "
                                                 "probably misspelt\n")));
    }
    // Nor is a name that mlktree.toml declares; and a known name is no mistake for another.
    write("mlktree.toml", "[[key]]\nsection = \"[PANEL]\"\nkey = \"RAW_LEVELS\"\n");
    EXPECT_THAT(missing({"PANEL", "RAW_LEVELS", "--model", "2"}),
                EndsWith("; tvconfigs/m2.ini:3 has RAW_LEVEL, which is probably misspelt\n"));
    write("tvconfigs/m2.ini", "[PANEL]\nm_pPanelName = Q\n");
    write("mlktree.toml", "[[key]]\nsection = \"[PANEL]\"\nkey = \"m_pPanelNames\"\n");
    EXPECT_THAT(missing({"PANEL", "m_pPanelNames", "--model", "2"}),
                Not(AnyOf(HasSubstr("misspelt"), HasSubstr("did you mean"))));
}

TEST_F(ExplainTest, SaysThatASetHasNoModel) {
    std::filesystem::remove(mDir.path("impdata/project_id.bin"));
    const std::string hint =
            "; the set has no model: /tvconfigs/system.ini has none of index 0; --model names "
            "one\n";
    EXPECT_THAT(missing({"SSC"}),
                AllOf(HasSubstr("there is no section [SSC] in "), EndsWith(hint)));
    EXPECT_THAT(missing({"BOARD", "OTHER_ITEM"}), EndsWith(hint));
    EXPECT_THAT(missing({"BORD"}), EndsWith("; did you mean [BOARD]?\n"));
    EXPECT_THAT(missing({"SSC", "--model", "2"}), Not(HasSubstr("no model")));
}

TEST_F(ExplainTest, TellsWhoReadsAnItem) {
    EXPECT_THAT(text({"PANEL", "m_pPanelName"}), HasSubstr("\n  read by      getPanelName\n"));
    EXPECT_THAT(text({"PANEL", "RAW"}),
                HasSubstr("\n  read by      no getter of its own; clients may ask getConfig, or "
                          "getConfigsByCategory for the section\n"));
}

TEST_F(ExplainTest, RemarksAndMissingFilesAreShown) {
    write("mlktree.toml",
          "[[key]]\nsection = \"[PANEL]\"\nkey = \"RAW\"\nremark = \"measured in the lab\"\n");
    EXPECT_THAT(text({"PANEL", "RAW"}), HasSubstr("measured in the lab"));
    EXPECT_THAT(text({"SSC", "m_pSSCName"}), HasSubstr("/tvconfigs/gone.ini (missing)"));
}

TEST_F(ExplainTest, FeaturesComeFromFileOptionPropertyOrDefault) {
    EXPECT_EQ(json({"feature", "pvrEnabled"}),
              R"({"feature":"pvrEnabled","key":"persist.vendor.mlk.tv.enable_pvr","value":true,)"
              R"("text":"1","origin":{"file":"tvconfigs/r.config","line":3,"layer":"file"},)"
              R"("replaced":[{"value":"0","file":"data/property/persist.vendor.mlk.tv.enable_pvr",)"
              R"("line":1,"layer":"property"}],"master":null,)"
              R"("readers":["IMlkTvConfigs.pvrEnabled"]})"
              "\n");
    for (const char* name : {"pvr", "PVR", "persist.vendor.mlk.tv.enable_pvr", "enable_pvr"}) {
        EXPECT_EQ(json({"feature", name}), json({"feature", "pvrEnabled"})) << name;
    }
    EXPECT_THAT(json({"feature", "pipEnabled"}), HasSubstr(R"("layer":"default")"));
    const std::string given =
            json({"feature", "pip", "--prop", "persist.vendor.mlk.tv.enable_pip=true"});
    EXPECT_THAT(given, AllOf(HasSubstr(R"("layer":"option")"), HasSubstr(R"("value":true)")));
    EXPECT_THAT(json({"feature", "dtvCableEnabled"}),
                AllOf(HasSubstr(R"("value":false,"text":"true")"),
                      HasSubstr(R"("master":{"feature":"dtvEnabled","value":false})")));
    EXPECT_THAT(text({"feature", "dtvCableEnabled"}), HasSubstr("makes this false"));
    EXPECT_THAT(text({"feature", "getMediaDebugCmd"}), HasSubstr("always answers"));
    EXPECT_THAT(json({"feature", "strEnabled", "--prop", "persist.vendor.mlk.enstr=1"}),
                HasSubstr(R"("readers":["IMlkFrameworkConfigs.strEnabled"])"));
    EXPECT_THAT(missing({"feature", "pvrEnabeld"}), HasSubstr("did you mean pvrEnabled?"));
}

TEST_F(ExplainTest, DelaysAreSumsOfTheFilesThatCount) {
    // Both files are called d.ini: the first is used for both.
    EXPECT_EQ(json({"audio", "SPEAKER", "DELAY"}),
              R"({"section":"[SPEAKER]","key":"DELAY","arc":false,"delay":17,"summands":[)"
              R"({"role":"panel","text":"10","value":10,"file":"tvconfigs/a/d.ini","line":2},)"
              R"({"role":"IC","text":"10","value":10,"file":"tvconfigs/a/d.ini","line":2},)"
              R"({"role":"hardware","text":"-3","value":-3,"file":"tvconfigs/audio/audio_hw.ini",)"
              R"("line":2}]})"
              "\n");
    // 0x10 counts as 0.
    const std::vector<std::string> avr = {"audio",        "SPEAKER", "DELAY",      "--arc",
                                          "--avr-vendor", "V",       "--avr-name", "N"};
    EXPECT_THAT(json(avr), AllOf(HasSubstr(R"("delay":24)"), HasSubstr("AVR_V_N.ini")));
    EXPECT_THAT(text({"audio", "SPEAKER", "ONLY", "--arc"}), HasSubstr("ONLY = 5 with ARC"));
    EXPECT_THAT(missing({"audio", "SPEAKER", "ONLY"}), HasSubstr("its delay is 0"));
    EXPECT_THAT(missing({"audio", "SPAEKER", "DELAY"}), HasSubstr("did you mean [SPEAKER]?"));
    EXPECT_THAT(refused({"audio", "--avr-name", "N"}), HasSubstr("give both"));
    EXPECT_THAT(refused({"audio", "--avr-name", "N", "--avr-vendor", "V"}), HasSubstr("--arc"));
    EXPECT_THAT(refused({"audio", "--arc", "--avr-name", std::string(120, 'n'), "--avr-vendor",
                         std::string(20, 'v')}),
                HasSubstr("the service refuses"));
}

TEST_F(ExplainTest, CountryTellsWhoseRecordItHas) {
    EXPECT_THAT(text({"country", "OMAN"}),
                AllOf(HasSubstr("that of ROMANIA: its name contains OMAN"),
                      HasSubstr("in the menu  no (tvconfigs/list.txt)"),
                      HasSubstr("ignored: neither model nor board has the item"),
                      HasSubstr("not used: the record's TV_CONFIG comes first")));
    EXPECT_THAT(json({"country"}),
                AllOf(HasSubstr(R"("country":"ROMANIA")"), HasSubstr(R"("tvSystem":"S")"),
                      HasSubstr(R"("listed":{"file":"tvconfigs/list.txt","line":1})"),
                      HasSubstr(R"("system":{"file":"tvconfigs/sys.xml","line":3})"),
                      HasSubstr(R"("applied":false)")));
    EXPECT_THAT(json({"country", "FRANCE"}),
                AllOf(HasSubstr(R"("record":null)"), HasSubstr(R"("items":[])")));
    EXPECT_THAT(missing({"country", "ROMNIA"}), HasSubstr("did you mean ROMANIA?"));
    EXPECT_THAT(refused({"country", "OMAN", "--country", "FRANCE"}), HasSubstr("two countries"));
}

TEST_F(ExplainTest, FileHasThoseWhoNameIt) {
    EXPECT_EQ(json({"file", "/tvconfigs/sys.xml"}),
              R"({"file":"tvconfigs/sys.xml","exists":true,"format":"TV system file","read":true,)"
              R"("namedBy":[{"file":"tvconfigs/m1.ini","line":9,"section":"[COUNTRY]",)"
              R"("key":"tvSysMap","value":"/tvconfigs/sys.xml"}],"sets":["model=1"],)"
              R"("countries":[]})"
              "\n");
    for (const std::string& path :
         {std::string("tvconfigs/sys.xml"), mDir.path("tvconfigs/sys.xml")}) {
        EXPECT_EQ(json({"file", path}), json({"file", "/tvconfigs/sys.xml"})) << path;
    }
    EXPECT_THAT(json({"file", "/tvconfigs/r.config"}), HasSubstr(R"("countries":["ROMANIA"])"));
    EXPECT_THAT(text({"file", "/tvconfigs/gone.ini"}),
                AllOf(HasSubstr("gone.ini (missing)"), HasSubstr("tvconfigs/m1.ini:16: [SSC]")));
    write("tvconfigs/loose.bin", "x");
    EXPECT_THAT(text({"file", "/tvconfigs/loose.bin"}), HasSubstr("no set uses it"));
    EXPECT_THAT(text({"file", "/impdata/project_id.bin"}), HasSubstr("index of the set's model"));
    EXPECT_THAT(missing({"file", "/tvconfigs/goen.ini"}),
                HasSubstr("did you mean tvconfigs/gone.ini?"));
    // No line names this one.
    EXPECT_THAT(missing({"file", "customer.ini"}),
                HasSubstr("did you mean tvconfigs/customer.ini?"));
    EXPECT_THAT(missing({"file", "tvconfigs/custmer.ini"}),
                HasSubstr("did you mean tvconfigs/customer.ini?"));
}

}  // namespace

}  // namespace mlk::tree
