#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

// Every model and board, each in a third of the countries; with sanitizers, in fewer.
TEST(AnswersTest, AgreeWithTheProductsOwnObjects) {
    const testing::QuietLog quiet;
    const Answered sample(samplePath());
    ASSERT_EQ(sample.answers->sets.size(), sample.line.setCount());
    size_t plans = 0;
    for (size_t i = 0; i < sample.answers->sets.size(); i += testing::kSanitized ? 16 : 3) {
        const AnswerSet& set = sample.answers->sets[i];
        Told told = toldBy(*sample.answers, set);
        told.merge(filesTold(*sample.answers, sample.tree, told));
        const Told expected =
                toldByProduct(sample.line, choiceOf(sample.line, *sample.answers, set));
        EXPECT_THAT(differing(told, expected), ::testing::IsEmpty())
                << nameOf(*sample.answers, set);
        plans += sample.answers->planPiece(set.plans).size();
    }
    EXPECT_GT(plans, 30U);
}

// What a country brings: items that some sets lack, and items that name files.
TEST(AnswersTest, TakeOfACountryWhatTheServiceTakes) {
    const testing::QuietLog quiet;
    const testing::TempDir dir;
    fs::copy(samplePath(), dir.path(), fs::copy_options::recursive);
    const std::string folder = dir.path() + "/tvconfigs/";
    fs::copy(folder + "freqtables", folder + "plans", fs::copy_options::recursive);
    fs::remove(folder + "plans/dtv/freqtable_eu");
    fs::copy(folder + "audio", folder + "sound", fs::copy_options::recursive);
    dir.write("tvconfigs/sound/avr_default.ini", "[ARC]\nATV_DELAY=500\n");
    dir.write("tvconfigs/sound/AVR_1_2.ini", "[ARC]\nATV_DELAY=70\n[NEW]\nA=-3\n");
    const std::string systems = "tvconfigs/tvsysmap/tvsys_eu.xml";
    std::string text = dir.read(systems);
    text.insert(
            text.find("<Item"),
            "<Item category=\"[AUDIO]\" key=\"AUDIO_CONFIG_AVR_PATH\""
            " value=\"/tvconfigs/sound/avr_default.ini\"/>\n"
            "<Item category=\"[AUDIO]\" key=\"AUDIO_CONFIG_PATH\" value=\"/tvconfigs/none\"/>\n"
            "<Item category=\"[KARAOKE]\" key=\"KARAOKE_CONFIG_PATH\" value=\"/x/y\"/>\n"
            "<Item category=\"[COUNTRY]\" key=\"COUNTRY_PATH\""
            " value=\"/tvconfigs/country/country_cn.txt\"/>\n"
            "<Item category=\"[TV_LANGUAGE]\" key=\"LANGUAGE_PATH\""
            " value=\"/tvconfigs/language/language_uk.txt\"/>\n"
            "<Item category=\"[FREQTABLE]\" key=\"FREQ_TABLE_PATH\" value=\"/tvconfigs/plans\"/>\n"
            "<Item category=\"[NEW]\" key=\"OF_BOARD\" value=\"of country\"/>\n"
            "<Item category=\"[NEW]\" key=\"OF_NOBODY\" value=\"of country\"/>\n");
    dir.write(systems, text);
    const std::string board = "tvconfigs/board/skerry_b1.ini";
    dir.write(board, dir.read(board) + "[NEW]\nOF_BOARD = of board\nTWICE = 1\nTWICE = 2\n");
    const std::string list = "tvconfigs/country/country_cn.txt";
    dir.write(list, dir.read(list) + "ATLANTIS\n");
    const Answered answered(dir.path());
    size_t compared = 0;
    for (size_t i = 0; i < answered.answers->sets.size(); ++i) {
        const AnswerSet& set = answered.answers->sets[i];
        // Countries of several TV systems, with both boards.
        const std::string country(answered.answers->countries[set.country]);
        if (set.model > 1 || (country != "GERMANY" && country != "FRANCE" && country != "FIJI")) {
            continue;
        }
        Told told = toldBy(*answered.answers, set);
        told.merge(filesTold(*answered.answers, answered.tree, told));
        const SetChoice choice = choiceOf(answered.line, *answered.answers, set);
        EXPECT_THAT(differing(told, toldByProduct(answered.line, choice)), ::testing::IsEmpty())
                << nameOf(*answered.answers, set);
        EXPECT_EQ(told.count("item [NEW] OF_NOBODY"), 0U);
        ++compared;
    }
    EXPECT_EQ(compared, 12U);
}

// Each place has the line that gives the value, that of the country's own record too.
TEST(AnswersTest, KnowTheLineOfEachItem) {
    const testing::QuietLog quiet;
    const Answered sample(samplePath());
    const LineAnswers& answers = *sample.answers;
    for (size_t i = 0; i < answers.sets.size(); i += 7) {
        const AnswerSet& set = answers.sets[i];
        const SetModel model(sample.line, choiceOf(sample.line, answers, set));
        for (const AnswerItem* const item : answers.itemsOf(answers.pieces[set.pieces])) {
            const AnswerName& name = answers.names[item->name];
            const Origin& origin = model.find(name.section, name.key)->current();
            const AnswerPlace place = answers.placeOf(*item, set);
            EXPECT_EQ(answers.pathOf(place), origin.file->path());
            EXPECT_EQ(place.line, origin.line->number)
                    << name.section << " " << name.key << " of " << nameOf(answers, set);
            EXPECT_EQ(answers.item(answers.pieces[set.pieces], item->name), item);
        }
    }
}

}  // namespace

}  // namespace mlk::tree
