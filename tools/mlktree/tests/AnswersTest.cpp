#include <gtest/gtest.h>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

namespace {

/** A tree with what its sets answer. */
struct Answered {
    explicit Answered(const std::string& root, const Selection& selection = {})
        : tree(root, {}),
          properties(root + "/data/property", {}),
          line(tree, settings, properties, selection),
          answers(answersOf(line, selection.isOneSet)) {}

    const Tree tree;
    const Settings settings;
    const TreeProperties properties;
    const ProductLine line;
    const std::unique_ptr<const LineAnswers> answers;
};

std::string samplePath() {
    return testing::sourceDir() + "/samples/partitions";
}

// Every model and board in every country.
TEST(AnswersTest, AgreeWithTheProductsOwnObjects) {
    const testing::QuietLog quiet;
    const Answered sample(samplePath());
    ASSERT_EQ(sample.answers->sets.size(), sample.line.setCount());
    size_t plans = 0;
    for (const AnswerSet& set : sample.answers->sets) {
        Told told = toldBy(*sample.answers, set);
        told.merge(filesTold(*sample.answers, sample.tree, told));
        const Told expected =
                toldByProduct(sample.line, choiceOf(sample.line, *sample.answers, set));
        EXPECT_EQ(told, expected) << nameOf(*sample.answers, set);
        plans += sample.answers->planPiece(set.plans).size();
    }
    EXPECT_GT(plans, 100U);
}

}  // namespace

}  // namespace mlk::tree
