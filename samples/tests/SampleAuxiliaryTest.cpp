// The auxiliary files that models name, read by the product's own parser.

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "host/testing/LogCapture.h"
#include "projectconfigs/IniProjectParser.h"
#include "samples/tests/SampleSet.h"

namespace mlk::samples {
namespace {

using mlk::testing::LogCapture;
using mlk::testing::LogLine;
using ::testing::HasSubstr;
using ::testing::Not;
using vendor::morlak::mlkconfigs::V1_0::implementation::IniProjectParser;

constexpr const char* kDefaultAvr = "avr_default.ini";
constexpr const char* kHardware = "audio_skerry.ini";

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

class SampleAuxiliary : public ::testing::TestWithParam<int> {
  protected:
    SampleAuxiliary() { mSample.select(GetParam(), "DEFAULT_BOARD_ID"); }

    // Loads the file that an item of the model names and gives its name.
    std::string load(const char* section, const char* key) {
        const std::string path = mSample.value(section, key);
        mParser.update(path.c_str());
        std::string name = nameOf(path);
        EXPECT_TRUE(mParser.findItem(name.c_str())) << path;
        return name;
    }

    std::string loadAudio(const std::string& name) {
        mParser.update(mSample.path("/tvconfigs/audio/" + name).c_str());
        EXPECT_TRUE(mParser.findItem(name.c_str())) << name;
        return name;
    }

    // The sum of the item's values in the files of these names.
    int sum(const std::vector<std::string>& names, const char* section, const char* key) const {
        int total = 0;
        for (const std::string& name : names) {
            total += std::atoi(mParser.getInfo(name.c_str(), ConfigKey(section, key)).c_str());
        }
        return total;
    }

    SampleSet mSample;
    IniProjectParser mParser;
};

TEST_P(SampleAuxiliary, IsReadWithoutAComplaint) {
    const LogCapture log;
    load("[AUDIO]", "AUDIO_CONFIG_PATH");
    load("[AUDIO]", "AUDIO_CONFIG_IC_PATH");
    load("[AUDIO]", "AUDIO_CONFIG_AVR_PATH");
    load("[KARAOKE]", "KARAOKE_CONFIG_PATH");
    load("[KEY]", "KEY_CONFIG_PATH");
    load("[DDCCI]", "CUSTOMER_DDCCI_PATH");
    for (const char* name : {kHardware, "AVR_0EC0DE_Orlan900.ini", "AVR_0AFADE_Sundra7.ini"}) {
        loadAudio(name);
    }
    for (const LogLine& line : log.lines()) {
        EXPECT_LT(line.priority, ANDROID_LOG_WARN) << line.text;
        EXPECT_THAT(line.text, Not(HasSubstr("don't exist")));
    }
}

TEST_P(SampleAuxiliary, EveryDelayIsOneThatTheSetCanApply) {
    const std::vector<std::string> names{load("[AUDIO]", "AUDIO_CONFIG_PATH"),
                                         load("[AUDIO]", "AUDIO_CONFIG_IC_PATH"),
                                         loadAudio(kHardware)};
    for (const char* section : {"[SPEAKER]", "[HEADPHONE]", "[SPDIF]", "[ARC]"}) {
        for (const char* key :
             {"DTV_DELAY", "ATV_DELAY", "HDMI_DELAY", "AV_DELAY", "MEDIA_DELAY"}) {
            EXPECT_GT(sum(names, section, key), 0) << section << " " << key;
            EXPECT_LE(sum(names, section, key),
                      std::atoi(mSample.value("[AUDIO]", "AUDIO_DELAY_MAX").c_str()))
                    << section << " " << key;
        }
    }
}

TEST_P(SampleAuxiliary, TheKeyFileKnowsTheKeypadOfTheModel) {
    const std::string name = load("[KEY]", "KEY_CONFIG_PATH");
    EXPECT_THAT(mParser.getInfo(name.c_str(), ConfigKey("[KEYPAD]", "KEY_POWER")),
                HasSubstr("long:STANDBY"));
    EXPECT_EQ(mParser.getInfo(name.c_str(), ConfigKey("[KEYPAD]", "KEY_COUNT")),
              mSample.value("[KEY]", "KEY_ADC_PRESS").empty() ? "7" : "5");
}

TEST_P(SampleAuxiliary, KaraokeAndDdcciAnswerNumbersAndTexts) {
    const std::string karaoke = load("[KARAOKE]", "KARAOKE_CONFIG_PATH");
    EXPECT_EQ(mParser.getInfo(karaoke.c_str(), ConfigKey("[MIC]", "MIC_COUNT")),
              mSample.value("[KARAOKE]", "KARAOKE_MENU") == "on" ? "2" : "1");
    const std::string ddcci = load("[DDCCI]", "CUSTOMER_DDCCI_PATH");
    EXPECT_EQ(mParser.getInfo(ddcci.c_str(), ConfigKey("[VCP]", "BRIGHTNESS_CODE")), "16");
    EXPECT_EQ(mParser.getInfo(ddcci.c_str(), ConfigKey("[CUSTOM]", "VENDOR_CODE")), "0xE3");
    EXPECT_EQ(mParser.getInfo(ddcci.c_str(), ConfigKey("[INFO]", "MODEL_NAME")), "TARNQUILL TV");
}

INSTANTIATE_TEST_SUITE_P(All, SampleAuxiliary, ::testing::Range(1, kModelCount + 1));

// The same for the model that is selected alone.
class SampleSelectedSound : public SampleAuxiliary {};

TEST_P(SampleSelectedSound, DelaysAddUpAsTheReadmeSays) {
    const std::vector<std::string> plain{load("[AUDIO]", "AUDIO_CONFIG_PATH"),
                                         load("[AUDIO]", "AUDIO_CONFIG_IC_PATH"),
                                         loadAudio(kHardware)};
    EXPECT_EQ(load("[AUDIO]", "AUDIO_CONFIG_AVR_PATH"), kDefaultAvr);
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.end(), plain.begin(), plain.end());
        return sum(more, "[ARC]", "HDMI_DELAY");
    };
    EXPECT_EQ(with({}), 59);
    EXPECT_EQ(with({kDefaultAvr}), 29);
    EXPECT_EQ(with({kDefaultAvr, loadAudio("AVR_0EC0DE_Orlan900.ini")}), 17);
    EXPECT_EQ(with({kDefaultAvr, loadAudio("AVR_0AFADE_Sundra7.ini")}), 47);
}

TEST_P(SampleSelectedSound, TheChassisFileIsTheOneThatThePropertyNames) {
    EXPECT_EQ("audio_" + contentOf("data/property/ro.hardware") + ".ini", kHardware);
}

INSTANTIATE_TEST_SUITE_P(Selected, SampleSelectedSound, ::testing::Values(2));

TEST(SampleAuxiliaryGrammar, OfTwoEqualKeysTheUpperOneCounts) {
    SampleSet sample;
    IniProjectParser parser;
    parser.update(sample.path("/tvconfigs/keys/keys_seven.ini").c_str());
    EXPECT_EQ(parser.getInfo("keys_seven.ini", ConfigKey("[KEYPAD]", "LONG_PRESS")), "1500");
}

// The reader removes more than a quote in the middle of a value, keeps blanks before a comment, and
// needs a value in every line.
TEST(SampleAuxiliaryGrammar, EveryLineIsOneThatTheReaderTakesAsItLooks) {
    for (const std::string& file : partitionFiles()) {
        const std::string folder = file.substr(0, file.rfind('/') + 1);
        if (folder != "tvconfigs/audio/" && folder != "tvconfigs/karaoke/" &&
            folder != "tvconfigs/keys/" && folder != "tvconfigs/ddcci/") {
            continue;
        }
        for (const std::string& line : linesOf(contentOf(file))) {
            if (line.empty() || line.front() == '#' || line.front() == ';') {
                continue;
            }
            SCOPED_TRACE(::testing::Message() << file << ": " << line);
            EXPECT_EQ(line.find_first_of("#;\t\r"), std::string::npos);
            EXPECT_NE(line.back(), ' ');
            if (line.front() == '[') {
                EXPECT_EQ(line.find(']'), line.size() - 1);
                continue;
            }
            const size_t equals = line.find('=');
            ASSERT_LT(equals + 2, line.size());
            EXPECT_NE(line.front(), ' ');
            EXPECT_EQ(line.find('=', equals + 1), std::string::npos);
            const std::string value = line.substr(line.find_first_not_of(' ', equals + 1));
            const bool quoted = value.front() == '"' && value.back() == '"' && value.size() > 2;
            EXPECT_EQ(value.find('"', quoted ? 1 : 0),
                      quoted ? value.size() - 1 : std::string::npos);
        }
    }
}

}  // namespace
}  // namespace mlk::samples
