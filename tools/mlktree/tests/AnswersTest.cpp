#include <gtest/gtest.h>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

namespace {

// Every model and board, each in a third of the countries.
TEST(AnswersTest, AgreeWithTheProductsOwnObjects) {
    const testing::QuietLog quiet;
    const Answered sample(samplePath());
    ASSERT_EQ(sample.answers->sets.size(), sample.line.setCount());
    size_t plans = 0;
    for (size_t i = 0; i < sample.answers->sets.size(); i += 3) {
        const AnswerSet& set = sample.answers->sets[i];
        Told told = toldBy(*sample.answers, set);
        told.merge(filesTold(*sample.answers, sample.tree, told));
        const Told expected =
                toldByProduct(sample.line, choiceOf(sample.line, *sample.answers, set));
        EXPECT_EQ(told, expected) << nameOf(*sample.answers, set);
        plans += sample.answers->planPiece(set.plans).size();
    }
    EXPECT_GT(plans, 30U);
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
