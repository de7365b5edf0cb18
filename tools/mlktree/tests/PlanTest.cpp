// `mlktree plan`.

#include <gmock/gmock.h>
#include <tinyxml2.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "tools/mlktree/plan/PlanPicture.h"
#include "tools/mlktree/plan/PlanRows.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

/** A channel as a line of a plan has it: label, frequency in kHz, bandwidth in Hz. */
HidlFreqListItem item(uint16_t channel, const std::string& label, int32_t frequency,
                      int32_t bandwidth = 8'000'000, int32_t modulation = 18) {
    HidlFreqListItem made{};
    made.channel = channel;
    made.frequency = frequency;
    made.bandwidth = bandwidth;
    made.modulation = modulation;
    label.copy(reinterpret_cast<char*>(made.label.data()), 4);
    return made;
}

PlanView viewOf(const std::vector<HidlFreqListItem>& channels) {
    CountryPlan plan;
    plan.kind = "DTV_ANTENNA";
    plan.file = "tvconfigs/freqtables/dtv/p";
    plan.channels = channels;
    return viewOf(plan, "GERMANY", nullptr);
}

std::vector<std::string> told(const PlanView& plan, const std::vector<Meeting>& meetings) {
    std::vector<std::string> texts;
    for (const Meeting& meeting : meetings) {
        texts.push_back(plan.channels[meeting.lower].name() + " " +
                        std::to_string(meeting.width()) + " " +
                        plan.channels[meeting.upper].name());
    }
    return texts;
}

TEST(PlanViewTest, FindsGapsAndOverlaps) {
    const PlanView plan = viewOf({item(23, "E23", 492'000), item(21, "E21", 474'000),
                                  item(22, "E22", 480'000), item(24, "E24", 500'300)});
    EXPECT_THAT(told(plan, plan.overlaps), ElementsAre("E21 2000 E22"));
    // 300 kHz are less than a twentieth of a channel.
    EXPECT_THAT(told(plan, plan.gaps), ElementsAre("E22 4000 E23"));
    EXPECT_EQ(plan.repeated(), 0U);
    EXPECT_EQ(summaryOf(plan), "1 gap, 1 overlap, no channels repeated");
}

TEST(PlanViewTest, LooksAtWhatReachesFurthest) {
    const PlanView plan = viewOf(
            {item(1, "A", 500'000, 80'000'000), item(2, "A2", 480'000), item(3, "A3", 544'000)});
    EXPECT_THAT(told(plan, plan.overlaps), ElementsAre("A 8000 A2"));
    EXPECT_THAT(told(plan, plan.gaps), IsEmpty()) << "A3 begins where A ends, not A2";
}

TEST(PlanViewTest, VariantsMayOverlap) {
    const PlanView plan = viewOf({item(2, "C2", 57'000), item(2, "H2", 55'753)});
    EXPECT_THAT(told(plan, plan.overlaps), IsEmpty());
}

TEST(PlanViewTest, AnalogueChannelsHaveTheirVisionCarrier) {
    const PlanView plan = viewOf({item(2, "E2", 48'250, 7'000'000, 1)});
    EXPECT_EQ(plan.channels[0].low, 47'000);
    EXPECT_EQ(plan.channels[0].high, 54'000);
}

TEST(PlanViewTest, FindsWhatIsRepeated) {
    const PlanView plan = viewOf({item(21, "E21", 474'000), item(22, "E22", 474'000),
                                  item(21, "E21", 490'000), item(24, "", 498'000),
                                  item(24, "", 506'000), item(25, "E25", 474'000, 8'000'000, 9)});
    EXPECT_EQ(repeatedOf(plan, 0), "");
    EXPECT_EQ(repeatedOf(plan, 1), "the frequency of E21");
    EXPECT_EQ(repeatedOf(plan, 2), "the name E21");
    EXPECT_EQ(repeatedOf(plan, 4), "") << "a number without a label may stand twice";
    EXPECT_EQ(repeatedOf(plan, 5), "") << "another modulation is another channel";
    EXPECT_EQ(plan.repeated(), 2U);
    EXPECT_THAT(told(plan, plan.overlaps), IsEmpty()) << "one frequency is no overlap";
}

TEST(PlanViewTest, FindsALabelOfTwoNumbers) {
    const PlanView plan = viewOf({item(21, "E21", 474'000), item(22, "E21", 482'000)});
    EXPECT_EQ(repeatedOf(plan, 1), "the name E21");
}

TEST(PlanViewTest, MegahertzAreExact) {
    EXPECT_EQ(megahertz(474'000), "474");
    EXPECT_EQ(megahertz(48'250), "48.25");
    EXPECT_EQ(megahertz(55'003), "55.003");
    EXPECT_EQ(megahertz(-1'250), "-1.25");
    EXPECT_EQ(megahertz(0), "0");
}

TEST(PlanRowsTest, EveryChannelStandsOnceInARowThatHoldsIt) {
    std::vector<HidlFreqListItem> items;
    for (uint16_t i = 0; i < 60; ++i) {
        items.push_back(item(i, "E", 474'000 + i * 8'000));
    }
    const PlanView plan = viewOf(items);
    const PlanRows made = rowsOf(plan, 20);
    EXPECT_GE(made.rows.size(), 3U);
    std::set<size_t> placed;
    for (const PlanRow& row : made.rows) {
        EXPECT_EQ(row.lanes, 1U);
        EXPECT_EQ(row.high - row.low, made.span);
        EXPECT_EQ(row.low % markDistance(made.span, 10), 0);
        for (const PlacedChannel& one : row.channels) {
            EXPECT_TRUE(placed.insert(one.channel).second);
            EXPECT_GE(plan.channels[one.channel].low, row.low);
            EXPECT_LE(plan.channels[one.channel].high, row.high);
        }
    }
    EXPECT_EQ(placed.size(), 60U);
}

TEST(PlanRowsTest, BarsThatOverlapLieInLanes) {
    const PlanView plan = viewOf({item(1, "A", 474'000), item(2, "B", 476'000),
                                  item(3, "C", 482'000), item(4, "D", 478'000)});
    const PlanRows made = rowsOf(plan, 20);
    ASSERT_EQ(made.rows.size(), 1U);
    std::vector<size_t> lanes;
    for (const PlacedChannel& one : made.rows[0].channels) {
        lanes.push_back(one.lane);
    }
    EXPECT_THAT(lanes, ElementsAre(0, 1, 2, 0));
    EXPECT_EQ(made.rows[0].lanes, 3U);
}

TEST(PlanRowsTest, FarChannelsDoNotMakeTooManyRows) {
    std::vector<HidlFreqListItem> items;
    for (uint16_t i = 0; i < 300; ++i) {
        items.push_back(item(i, "", 474'000 + i * 7'000'000));
    }
    EXPECT_LE(rowsOf(viewOf(items), 20).rows.size(), kMostPlanRows);
    items = {item(1, "", INT32_MAX, INT32_MAX), item(2, "", 1, INT32_MIN), item(3, "", 5, -1)};
    EXPECT_EQ(rowsOf(viewOf(items), 20).rows.size(), 2U);
}

TEST(PlanRowsTest, MarksAreRound) {
    EXPECT_EQ(markDistance(160'000, 10), 20'000);
    EXPECT_EQ(markDistance(100, 10), 10);
    EXPECT_EQ(markDistance(410, 10), 50);
    EXPECT_EQ(markDistance(0, 10), 1);
}

std::string drawn(const PlanView& plan) {
    std::string text;
    drawPlan(plan, [&text](std::string_view piece) { text += piece; });
    return text;
}

// How many elements of that class there are; also one of several words.
size_t countOf(const tinyxml2::XMLElement& element, const std::string& kind) {
    const char* const classes = element.Attribute("class");
    size_t found =
            (" " + std::string(classes != nullptr ? classes : "") + " ").find(" " + kind + " ") !=
                            std::string::npos
                    ? 1
                    : 0;
    for (const auto* child = element.FirstChildElement(); child != nullptr;
         child = child->NextSiblingElement()) {
        found += countOf(*child, kind);
    }
    return found;
}

/** A picture that has been parsed. */
struct Parsed {
    explicit Parsed(const std::string& svg) {
        EXPECT_EQ(document.Parse(svg.c_str(), svg.size()), tinyxml2::XML_SUCCESS) << svg;
    }
    size_t count(const std::string& kind) const { return countOf(*document.RootElement(), kind); }

    tinyxml2::XMLDocument document;
};

TEST(PlanPictureTest, HasABarForEachChannelAndMarks) {
    const PlanView plan = viewOf({item(21, "E21", 474'000), item(22, "E22", 480'000),
                                  item(23, "E23", 498'000), item(24, "E24", 498'000)});
    const std::string svg = drawn(plan);
    const Parsed parsed(svg);
    const auto* const page = parsed.document.RootElement();
    EXPECT_STREQ(page->Attribute("role"), "img");
    EXPECT_STREQ(page->FirstChildElement("title")->GetText(), "Channel plan GERMANY DTV_ANTENNA");
    EXPECT_STREQ(page->FirstChildElement("desc")->GetText(),
                 "4 channels from 470 to 502 MHz: 1 gap, 1 overlap, 1 channel repeated.");
    EXPECT_THAT(page->Attribute("aria-labelledby"), HasSubstr("plan-description"));
    // One of each more in the legend.
    EXPECT_EQ(parsed.count("bar"), 4U + 2U);
    EXPECT_EQ(parsed.count("gap"), 1U + 1U);
    EXPECT_EQ(parsed.count("overlap"), 1U + 1U);
    EXPECT_EQ(parsed.count("repeated"), 1U + 1U);
    EXPECT_THAT(svg,
                AllOf(HasSubstr("<title>E22: channel 22, 480 MHz, 8 MHz wide, DVB_AUTO</title>"),
                      HasSubstr("<title>Overlap of 2 MHz between E21 and E22</title>"),
                      HasSubstr("<title>Gap of 10 MHz between E22 and E23</title>"),
                      HasSubstr("repeats the frequency of E23</title>"),
                      HasSubstr("prefers-color-scheme: dark")));
}

TEST(PlanPictureTest, ABarIsAsWideAsItsBandwidth) {
    const PlanView plan = viewOf({item(1, "A", 474'000), item(2, "B", 481'000, 6'000'000)});
    const std::string svg = drawn(plan);
    // 20 channels of 8 MHz are 976 units wide; the axis begins at 460 MHz.
    EXPECT_THAT(svg, HasSubstr("x=\"73\" y=\"76\" width=\"48.8\" height=\"34\"/>"));
    EXPECT_THAT(svg, HasSubstr("x=\"121.8\" y=\"76\" width=\"36.6\" height=\"34\"/>"));
}

TEST(PlanPictureTest, TextsOfATreeAreNoMarkup) {
    PlanView plan = viewOf(
            {item(1, "<b&", 474'000), item(2, "\"'>", 482'000), item(3, "\x1b[\xff", 490'000)});
    plan.file = "tvconfigs/</text><script>alert(1)</script>";
    const std::string svg = drawn(plan);
    const Parsed parsed(svg);
    EXPECT_EQ(parsed.count("bar"), 3U + 1U);
    EXPECT_THAT(svg, AllOf(Not(HasSubstr("<script")), Not(HasSubstr("<b")), HasSubstr("&lt;b&amp;"),
                           Not(HasSubstr("\x1b"))));
}

TEST(PlanPictureTest, OddChannelsStayInThePicture) {
    const Parsed parsed(drawn(viewOf({item(1, "A", INT32_MAX, INT32_MAX),
                                      item(2, "B", 1, INT32_MIN), item(3, "C", 474'000, 0, 99)})));
    EXPECT_EQ(parsed.count("bar"), 3U + 2U);
    const Parsed none(drawn(viewOf({})));
    EXPECT_EQ(none.count("bar"), 0U);
}

class PlanCommandTest : public ::testing::Test {
  protected:
    PlanCommandTest() {
        std::filesystem::copy(testing::sourceDir() + "/samples/partitions", mDir.path(),
                              std::filesystem::copy_options::recursive);
    }

    Outcome plan(std::vector<std::string> words) const {
        words.insert(words.begin(), "plan");
        return runMlktree(words, mDir.path());
    }
    std::string shown(const std::vector<std::string>& words) const {
        const Outcome outcome = plan(words);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.out;
    }
    std::string refused(const std::vector<std::string>& words, int status) const {
        const Outcome outcome = plan(words);
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.out, "");
        return outcome.err;
    }

    testing::QuietLog mQuiet;
    testing::TempDir mDir;
};

TEST_F(PlanCommandTest, ShowsATable) {
    const std::string text = shown({"GERMANY", "DTV_ANTENNA"});
    EXPECT_THAT(text,
                StartsWith("GERMANY DTV_ANTENNA: 57 channels, 1 gap, no overlaps, no channels "
                           "repeated\n"
                           "tvconfigs/freqtables/dtv/freqtable_eu, named by "
                           "tvconfigs/freqtables/country_freq_map.xml:8\n\n"
                           "CHANNEL  FREQUENCY  BANDWIDTH  LABEL  MODULATION\n"
                           "         kHz        Hz\n"
                           "5        177500     7000000    E5     18 DVB_AUTO\n"));
    EXPECT_THAT(text,
                HasSubstr("\n21       474000     8000000    E21    18 DVB_AUTO  gap of 240 MHz "
                          "after E12\n"));
}

TEST_F(PlanCommandTest, ShowsJson) {
    const json object = json::parse(shown({"USA", "DTV_CABLE", "HRC", "--format", "json"}));
    EXPECT_EQ(object["country"], "USA");
    EXPECT_EQ(object["kind"], "DTV_CABLE");
    EXPECT_EQ(object["cable"], "HRC");
    EXPECT_EQ(object["named"]["file"], "tvconfigs/freqtables/country_freq_map.xml");
    EXPECT_EQ(object["channels"][0],
              json::parse(R"({"channel":1,"frequency":73754,"bandwidth":6000000,"label":"H1",)"
                          R"("modulation":5,"modulationName":"QAM_AUTO","line":7})"));
    EXPECT_EQ(object["overlaps"], json::array());
}

TEST_F(PlanCommandTest, TakesATreeInFront) {
    const std::string text = shown({"GERMANY", "DTV_CABLE"});
    const std::string other = "/nowhere/at/all";
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{mDir.path(), "GERMANY", "DTV_CABLE"},
          {mDir.path(), "GERMANY", "DTV_CABLE", "AUTO"},
          {"GERMANY", "DTV_CABLE", "--tree", mDir.path()}}) {
        std::vector<std::string> all = {"plan"};
        all.insert(all.end(), words.begin(), words.end());
        EXPECT_EQ(runMlktree(all, other).out, text);
    }
    EXPECT_EQ(shown({"GERMANY", "DTV_CABLE", "AUTO"}), text);
    // The cable counts for cable only, as in the service.
    EXPECT_EQ(shown({"GERMANY", "DTV_ANTENNA", "HRC"}), shown({"GERMANY", "DTV_ANTENNA"}));
}

TEST_F(PlanCommandTest, UsesTheMapOfTheSet) {
    mDir.write("tvconfigs/other/country_freq_map.xml",
               "<COUNTRY_FREQ_MAP><COUNTRY_NAME>GERMANY</COUNTRY_NAME>"
               "<DTV_ANTENA>p</DTV_ANTENA></COUNTRY_FREQ_MAP>");
    mDir.write("tvconfigs/other/dtv/p", "7, 8000000, 474000, X, DVB_AUTO\n");
    const std::string file = "tvconfigs/model/TRQ65_C3_UK.ini";
    mDir.write(file, mDir.read(file) + "\n[FREQTABLE]\nFREQ_TABLE_PATH = \"/tvconfigs/other\"\n");
    EXPECT_THAT(shown({"GERMANY", "DTV_ANTENNA", "--model", "6"}), HasSubstr(": 1 channel,"));
    EXPECT_THAT(shown({"GERMANY", "DTV_ANTENNA", "--model", "2"}), HasSubstr(": 57 channels,"));
}

TEST_F(PlanCommandTest, SaysWhatWouldBeRight) {
    EXPECT_THAT(refused({"UK", "DTV_CABLE"}, 2), HasSubstr("did you mean UNITED_KINGDOM?"));
    EXPECT_THAT(refused({"GERMANY", "dvt_cable"}, 2),
                HasSubstr("KIND is DTV_ANTENNA, DTV_CABLE, ATV_ANTENNA, ATV_CABLE, not "
                          "\"dvt_cable\"; did you mean DTV_CABLE?"));
    EXPECT_THAT(refused({"USA", "DTV_CABLE", "HRX"}, 2),
                HasSubstr("CABLE is AUTO, STD, HRC, IRC, not \"HRX\"; did you mean HRC?"));
    EXPECT_THAT(refused({mDir.path(), "USA", "DTV_CABEL"}, 2),
                HasSubstr("did you mean DTV_CABLE?"));
    EXPECT_THAT(refused({"GERMANY"}, 2), HasSubstr("plan takes [TREE] COUNTRY KIND [CABLE]"));
    EXPECT_EQ(refused({"USA", "DTV_CABLE", "--svg", "-", "--format", "json"}, 2),
              "mlktree: --svg draws a picture, --format prints a table; leave one of them out\n");
}

TEST_F(PlanCommandTest, NamesMapAndLineOfAPlanThatIsMissing) {
    const std::string map = "tvconfigs/freqtables/country_freq_map.xml";
    EXPECT_EQ(refused({"GERMANY", "DTV_CABLE", "HRC"}, 1),
              "mlktree: GERMANY has no plan DTV_CABLE HRC in model=2,board=skerry_b2.ini,"
              "country=GERMANY: " +
                      map + ":6 names DTV_ANTENNA, DTV_CABLE AUTO, ATV_ANTENNA, ATV_CABLE AUTO\n");
    EXPECT_THAT(refused({"ANGOLA", "DTV_CABLE"}, 1), HasSubstr(map + " does not have the country"));
    const std::string plan = "tvconfigs/freqtables/dtv/freqtable_eu";
    mDir.write(plan, "// no channel\n");
    EXPECT_EQ(refused({"GERMANY", "DTV_ANTENNA"}, 1),
              "mlktree: " + plan + ", which " + map + ":8 names, has no channel\n");
    std::filesystem::remove(mDir.path(plan));
    EXPECT_EQ(refused({"GERMANY", "DTV_ANTENNA"}, 1),
              "mlktree: there is no file " + plan + ", which " + map +
                      ":8 names, for GERMANY DTV_ANTENNA\n");
    mDir.write(map, "<M><COUNTRY");
    EXPECT_THAT(refused({"GERMANY", "DTV_ANTENNA"}, 1),
                HasSubstr("the map " + map + " cannot be read"));
    std::filesystem::remove(mDir.path(map));
    EXPECT_THAT(refused({"GERMANY", "DTV_ANTENNA"}, 1), HasSubstr("there is no map " + map));
    const testing::TempDir empty;
    std::filesystem::create_directory(empty.path("tvconfigs"));
    EXPECT_EQ(refused({empty.path(), "GERMANY", "DTV_ANTENNA"}, 1),
              "mlktree: GERMANY has no plan DTV_ANTENNA: there is no map " + map + "\n");
}

// docs/mlktree.md shows it and has the commands that make it.
TEST_F(PlanCommandTest, ThePictureOfTheGuideIsWhatItDraws) {
    const std::string file = "tvconfigs/freqtables/dtv/freqtable_eu";
    std::string text = mDir.read(file);
    text.replace(text.find("482000, E22"), 6, "480000");
    mDir.write(file, text);
    std::ifstream picture(testing::sourceDir() + "/docs/plan.svg");
    std::ostringstream shownThere;
    shownThere << picture.rdbuf();
    EXPECT_EQ(shown({"GERMANY", "DTV_ANTENNA", "--svg", "-"}), shownThere.str())
            << "make docs/plan.svg anew as the guide says";
}

TEST_F(PlanCommandTest, APlanMayBeReadAsABoardToo) {
    const std::string text = shown({"GERMANY", "DTV_ANTENNA", "--format", "json"});
    mDir.write("impdata/board_id.bin", "BOARD_ID=/tvconfigs/freqtables/dtv/freqtable_eu\n");
    EXPECT_EQ(shown({"GERMANY", "DTV_ANTENNA", "--format", "json"}), text);
}

TEST_F(PlanCommandTest, DrawsIntoAFileOrOnStandardOutput) {
    const std::string svg = shown({"GERMANY", "DTV_ANTENNA", "--svg", "-"});
    EXPECT_EQ(shown({"GERMANY", "DTV_ANTENNA", "--svg", mDir.path("plan.svg")}), "");
    EXPECT_EQ(mDir.read("plan.svg"), svg);
    EXPECT_EQ(Parsed(svg).count("bar"), 57U + 1U);
    EXPECT_THAT(refused({"GERMANY", "DTV_ANTENNA", "--svg", mDir.path("none/plan.svg")}, 2),
                HasSubstr("none/plan.svg"));
}

}  // namespace

}  // namespace mlk::tree
