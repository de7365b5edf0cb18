// The audio files that are loaded, the AVR's among them, and the delay they add up to.

#include <android/log.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <limits>

#include "host/testing/EnvironmentVariable.h"
#include "host/testing/QuietLog.h"
#include "host/testing/Threads.h"
#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

using Service = IMlkProjectConfigs;

const ProjectConfigKey kKey{"[ARC]", "DELAY"};

constexpr const char* kAllFiles =
        "[AUDIO]\nAUDIO_CONFIG_PATH=/tvconfigs/audio/panel.ini\n"
        "AUDIO_CONFIG_IC_PATH=/tvconfigs/audio/ic.ini\n"
        "AUDIO_CONFIG_AVR_PATH=/tvconfigs/audio/avr/default.ini\n";

class AudioTest : public ServiceOnSet {
  protected:
    AudioTest() { mSet.setProperty("ro.hardware", "rock"); }

    // Writes a file of tvconfigs/audio that gives the key this value.
    void audioFile(const std::string& name, const std::string& value) const {
        write("tvconfigs/audio/" + name, "[ARC]\nDELAY=" + value + "\n");
    }
    std::string audioPath(const std::string& name) const {
        return mSet.tvconfigs() + "/audio/" + name;
    }
    void startWithAllFiles() {
        project(kAllFiles);
        audioFile("panel.ini", "1");
        audioFile("ic.ini", "20");
        audioFile("avr/default.ini", "300");
        audioFile("audio_rock.ini", "4000");
        start();
        mLog.clear();
    }
    std::string delay(const std::string& avrName = "") {
        return text(asked(&Service::getAudioDelay, kKey, avrName));
    }
    void setAvr(const std::string& vendorId, const std::string& osdName) {
        EXPECT_EQ(flag(asked(&Service::setAvrVendorId, vendorId)), "true");
        EXPECT_EQ(flag(asked(&Service::setAvrOSDName, osdName)), "true");
    }
    std::vector<std::string> loadedLast() const {
        std::vector<std::string> lines;
        for (const std::string& line : mLog.texts(ANDROID_LOG_DEBUG, "IniProjectParser")) {
            if (line.find("\tIniPath ID=") == 0) {
                lines.push_back(line.substr(12));
            }
        }
        return lines;
    }
};

// Each death runs the test again in a process that leaves its folder; that is then in this one's.
class AudioDeathTest : public AudioTest {
  protected:
    AudioDeathTest() { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    const mlk::testing::EnvironmentVariable mTemporary{"TMPDIR", mSet.dir().path()};
};

TEST_F(AudioTest, TextOfAnAvrEndsAtItsNul) {
    startWithAllFiles();
    audioFile("avr/AVR_X_Y.ini", "50000");
    setAvr({"X\0tail", 6}, {"Y\0tail", 6});
    EXPECT_EQ(delay("ARC"), "54321");
}

TEST_F(AudioTest, NameOfAnItemEndsAtItsNul) {
    startWithAllFiles();
    const ProjectConfigKey key{std::string("[ARC]\0tail", 10), std::string("DELAY\0tail", 10)};
    EXPECT_EQ(text(asked(&Service::getAudioDelay, key, "")), "4021");
}

TEST_F(AudioTest, FilesAreLoadedInOrder) {
    startWithAllFiles();
    start();
    EXPECT_THAT(loadedLast(),
                ElementsAre(audioPath("panel.ini"), audioPath("ic.ini"),
                            audioPath("avr/default.ini"), audioPath("audio_rock.ini")));
    const auto debug = logged(ANDROID_LOG_DEBUG);
    EXPECT_THAT(debug, AllOf(Contains("mPanelName:panel.ini"), Contains("mICName:ic.ini"),
                             Contains("mAvrDefaultName:default.ini")));
    EXPECT_THAT(logged(ANDROID_LOG_ERROR),
                AllOf(Not(Contains(HasSubstr("audio"))), Not(Contains(HasSubstr("AVR")))));
}

TEST_F(AudioTest, MissingItemsAreReportedAndSkipped) {
    project("");
    audioFile("audio_rock.ini", "7");
    start();
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), AllOf(Contains("Can't get audio config path!"),
                                                 Contains("Can't get audio config IC path!"),
                                                 Contains("Can't get audio config AVR path!")));
    EXPECT_THAT(loadedLast(), ElementsAre(audioPath("audio_rock.ini")))
            << "the hardware's file needs no item";
    EXPECT_EQ(delay(), "7");
    EXPECT_EQ(delay("ARC"), "7");
    EXPECT_THAT(mLog.texts(ANDROID_LOG_DEBUG, "IniProjectParser"),
                Contains("can't find the  audio config"));
}

TEST_F(AudioTest, PathWithoutAFolderNamesNoFile) {
    project("[AUDIO]\nAUDIO_CONFIG_PATH=panel.ini\n");
    start();
    EXPECT_THAT(loadedLast(), Contains("panel.ini"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Not(Contains(HasSubstr("mPanelName:panel"))));
    EXPECT_EQ(delay(), "0");
}

TEST_F(AudioTest, FileNameHasToLeaveRoomForANul) {
    const std::string longest = std::string(123, 'p') + ".ini";
    const std::string tooLong = std::string(124, 'q') + ".ini";
    project("[AUDIO]\nAUDIO_CONFIG_PATH=/tvconfigs/audio/" + longest +
            "\nAUDIO_CONFIG_IC_PATH=/tvconfigs/audio/" + tooLong + "\n");
    audioFile(longest, "3");
    audioFile(tooLong, "50");
    start();
    EXPECT_THAT(loadedLast(), AllOf(Contains(audioPath(longest)), Contains(audioPath(tooLong))));
    EXPECT_EQ(delay(), "3");
}

TEST_F(AudioTest, DelayIsASumThatTheAvrNameChooses) {
    startWithAllFiles();
    EXPECT_EQ(delay(), "4021");
    EXPECT_EQ(delay("arc"), "4021");
    EXPECT_EQ(delay("ARC "), "4021");
    EXPECT_EQ(delay("ARC"), "4321") << "the default AVR counts before any AVR is known";
    audioFile("avr/AVR_0EC0DE_Orlan.ini", "50000");
    setAvr("0EC0DE", "Orlan");
    EXPECT_EQ(delay("ARC"), "54321");
    EXPECT_EQ(delay("eARC"), "4021");
    EXPECT_EQ(text(asked(&Service::getAudioDelay, ProjectConfigKey{"ARC", "DELAY"}, "ARC")), "0")
            << "a category keeps its brackets";
}

TEST_F(AudioTest, QueryLogsWhereItLookedAndWhatItAdded) {
    startWithAllFiles();
    const std::string names =
            "getAudioDelay: Category:[ARC], Key:DELAY, mPanelName:panel.ini, mICName:ic.ini, "
            "mAvrDefaultName:default.ini, mHwAudioConfigName:audio_rock.ini";
    delay("HDMI");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                ElementsAre(names,
                            "getAudioDelay: panel:1, IC:20, hwAudioConfig:4000, "
                            "audioDelay:4021"));
    mLog.clear();
    delay("ARC");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                ElementsAre(names,
                            "getAudioDelay: panel:1, IC:20, avrDefault:300, "
                            "hwAudioConfig:4000, audioDelay:4321"));
    audioFile("avr/AVR_V_N.ini", " 5 ms");
    setAvr("V", "N");
    mLog.clear();
    delay("ARC");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                ElementsAre(names,
                            "getAudioDelay: panel:1, IC:20, avrDefault:300, "
                            "avr[AVR_V_N.ini]:5 ms, hwAudioConfig:4000, audioDelay:4326"));
}

TEST_F(AudioTest, TextsThatAreNoNumbersCountNothing) {
    startWithAllFiles();
    audioFile("panel.ini", "12");
    audioFile("ic.ini", "-5");
    audioFile("audio_rock.ini", "abc");
    start();
    EXPECT_EQ(delay(), "7");
}

TEST_F(AudioTest, SumOutOfRangeWraps) {
    startWithAllFiles();
    audioFile("panel.ini", "2147483647");
    audioFile("ic.ini", "1");
    audioFile("audio_rock.ini", "0");
    start();
    EXPECT_EQ(delay(), std::to_string(std::numeric_limits<int32_t>::min()));
}

TEST_F(AudioTest, AvrNeedsBothTexts) {
    startWithAllFiles();
    audioFile("avr/AVR_X_Y.ini", "50000");
    EXPECT_EQ(flag(asked(&Service::setAvrVendorId, "X")), "true");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), ElementsAre("mAvrVendorId:X"));
    EXPECT_EQ(delay("ARC"), "4321");
    mLog.clear();
    EXPECT_EQ(flag(asked(&Service::setAvrOSDName, "Y")), "true");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), ElementsAre("mAvrOSDName:Y", "mAvrName:AVR_X_Y.ini"));
    EXPECT_THAT(loadedLast(), ElementsAre(audioPath("avr/AVR_X_Y.ini")));
    EXPECT_EQ(delay("ARC"), "54321");
    EXPECT_EQ(flag(asked(&Service::setAvrVendorId, "")), "true");
    EXPECT_EQ(delay("ARC"), "54321") << "the AVR stays until both texts name another";
}

TEST_F(AudioTest, AvrFileIsLoadedOnce) {
    startWithAllFiles();
    audioFile("avr/AVR_X_Y.ini", "50000");
    setAvr("X", "Y");
    audioFile("avr/AVR_X_Y.ini", "90000");
    mLog.clear();
    setAvr("X", "Y");
    EXPECT_THAT(loadedLast(), IsEmpty());
    EXPECT_THAT(mLog.texts(ANDROID_LOG_DEBUG, "IniProjectParser"),
                ElementsAre("the AVR_X_Y.ini audio config have exist",
                            "the AVR_X_Y.ini audio config have exist"));
    EXPECT_EQ(delay("ARC"), "54321");
}

TEST_F(AudioTest, AvrWithoutAFileCountsNothingUntilThereIsOne) {
    startWithAllFiles();
    setAvr("X", "Y");
    EXPECT_EQ(delay("ARC"), "4321");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains(HasSubstr("avr[AVR_X_Y.ini]:,")));
    audioFile("avr/AVR_X_Y.ini", "50000");
    setAvr("X", "Y");
    EXPECT_EQ(delay("ARC"), "54321");
}

TEST_F(AudioTest, TextsAreTakenAsTheyCome) {
    startWithAllFiles();
    audioFile("avr/AVR_x y_Ä%s.ini", "50000");
    setAvr("x y", "Ä%s");
    EXPECT_EQ(delay("ARC"), "54321");
    setAvr("X y", "Ä%s");
    EXPECT_EQ(delay("ARC"), "4321");
}

TEST_F(AudioTest, AvrPathIsReadAgainFromTheProject) {
    startWithAllFiles();
    write("tvconfigs/model/B.ini", "[AUDIO]\nAUDIO_CONFIG_AVR_PATH=/tvconfigs/other/x.ini\n");
    write("tvconfigs/other/AVR_X_Y.ini", "[ARC]\nDELAY=60000\n");
    EXPECT_EQ(flag(asked(&Service::setProjectId, 2)), "true");
    setAvr("X", "Y");
    EXPECT_EQ(delay("ARC"), "64321");
}

TEST_F(AudioTest, WithoutAnAvrPathNothingIsLoaded) {
    project("[AUDIO]\nAUDIO_CONFIG_PATH=/tvconfigs/audio/panel.ini\n");
    audioFile("panel.ini", "1");
    start();
    mLog.clear();
    setAvr("X", "Y");
    EXPECT_THAT(loadedLast(), IsEmpty());
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), IsEmpty());
    EXPECT_EQ(delay("ARC"), "1");
}

TEST_F(AudioTest, AvrPathWithoutAFolderIsAnError) {
    project("[AUDIO]\nAUDIO_CONFIG_AVR_PATH=default.ini\n");
    start();
    mLog.clear();
    setAvr("X", "Y");
    EXPECT_THAT(logged(ANDROID_LOG_ERROR),
                ElementsAre("MlErr : [updateAudioConfig 780], strrchr return null"));
    EXPECT_THAT(loadedLast(), IsEmpty());
}

TEST_F(AudioTest, TextMayFillItsBufferToTheLastByte) {
    startWithAllFiles();
    const std::string full(128, 'v');
    EXPECT_EQ(flag(asked(&Service::setAvrVendorId, full)), "true");
    EXPECT_EQ(flag(asked(&Service::setAvrVendorId, "v")), "true");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), ElementsAre("mAvrVendorId:" + full, "mAvrVendorId:v"));
}

TEST_F(AudioTest, NameMayFillItsBufferWhereNoPathIsMadeOfIt) {
    project("");
    start();
    const std::string osdName(128 - 4 - 1 - 1 - 4, 'n');
    const std::string name = "AVR_v_" + osdName + ".ini";
    ASSERT_EQ(name.size(), 128U);
    setAvr("v", osdName);
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("mAvrName:" + name));
    mLog.clear();
    EXPECT_EQ(delay("ARC"), "0");
    EXPECT_THAT(mLog.texts(ANDROID_LOG_DEBUG, "IniProjectParser"),
                Contains("can't find the " + name + " audio config"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains(HasSubstr("avr[" + name + "]:,")));
}

TEST_F(AudioTest, RefusedTextChangesNothing) {
    startWithAllFiles();
    audioFile("avr/AVR_X_Y.ini", "50000");
    setAvr("X", "Y");
    EXPECT_FALSE(mService->trySetAvrVendorId(std::string(129, 'v')));
    EXPECT_FALSE(mService->trySetAvrVendorId(std::string(128, 'v')));
    EXPECT_FALSE(mService->trySetAvrOSDName(std::string(119, 'n')));
    EXPECT_EQ(delay("ARC"), "54321");
    mLog.clear();
    EXPECT_TRUE(mService->trySetAvrVendorId("X"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("mAvrName:AVR_X_Y.ini"));
}

TEST_F(AudioTest, AbsentTextIsAnEmptyOne) {
    startWithAllFiles();
    EXPECT_TRUE(mService->trySetAvrVendorId(absentText()));
    EXPECT_EQ(text(asked(&Service::getAudioDelay, kKey, absentText())), "4021");
}

TEST_F(AudioTest, LongestAvrPathIsTaken) {
    const std::string folder = mSet.tvconfigs() + "/audio/avr/";
    ASSERT_LT(folder.size() + 11, 127U) << "the folder of the test is too long for it";
    const std::string osdName(127 - folder.size() - 10, 'n');
    startWithAllFiles();
    audioFile("avr/AVR_v_" + osdName + ".ini", "50000");
    setAvr("v", osdName);
    EXPECT_EQ(delay("ARC"), "54321");
    EXPECT_FALSE(mService->trySetAvrOSDName(osdName + "n"));
    EXPECT_EQ(delay("ARC"), "54321") << "the AVR before is still there";
    mLog.clear();
    EXPECT_TRUE(mService->trySetAvrVendorId("v"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("mAvrName:AVR_v_" + osdName + ".ini"));
}

TEST_F(AudioDeathTest, TextLongerThanItsBufferEndsTheProcess) {
    startWithAllFiles();
    EXPECT_EXIT(mService->setAvrVendorId(std::string(129, 'v'), [](const auto&) {}),
                ::testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(mService->setAvrOSDName(std::string(129, 'n'), [](const auto&) {}),
                ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(AudioDeathTest, NameOrPathThatDoesNotFitEndsTheProcess) {
    startWithAllFiles();
    EXPECT_EQ(flag(asked(&Service::setAvrVendorId, "v")), "true");
    EXPECT_EXIT(mService->setAvrOSDName(std::string(119, 'n'), [](const auto&) {}),
                ::testing::KilledBySignal(SIGABRT), "")
            << "129 bytes of a name";
    const size_t longest = 128 - (mSet.tvconfigs() + "/audio/avr/AVR_v_.ini").size();
    EXPECT_EXIT(mService->setAvrOSDName(std::string(longest, 'n'), [](const auto&) {}),
                ::testing::KilledBySignal(SIGABRT), "")
            << "128 bytes of a path";
}

// Finds races with the thread sanitizer, and delays that mix two AVRs. Half of the threads set the
// AVR, so that two setters run at once too.
TEST_F(AudioTest, QueriesBesideSettersSeeOneAvr) {
    startWithAllFiles();
    // Long texts: how a short one is assigned the thread sanitizer does not see.
    const std::string one(20, 'X');
    const std::string other(25, 'Z');
    audioFile("avr/AVR_" + one + "_Y.ini", "50000");
    audioFile("avr/AVR_" + other + "_Y.ini", "60000");
    setAvr(one, "Y");
    std::atomic<int> odd{0};
    const mlk::testing::QuietLog quiet;
    mlk::testing::inThreads(4, [&](int thread) {
        for (int i = 0; i < 500; ++i) {
            if (thread % 2 == 0) {
                mService->setAvrVendorId(i % 2 == 0 ? other : one, [](const auto&) {});
            } else {
                mService->getAudioDelay(kKey, "ARC", [&](const OptionalString& answer) {
                    odd += answer.value != "54321" && answer.value != "64321" ? 1 : 0;
                });
            }
        }
    });
    EXPECT_EQ(odd, 0);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
