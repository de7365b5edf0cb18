#include "tools/mlktree/Parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

namespace mlk::tree {

namespace {

TEST(ParallelTest, DoesEachPieceOfWorkOnce) {
    std::vector<std::atomic<int>> done(100);
    forEachInParallel(done.size(), [&](size_t i) { ++done[i]; });
    for (const std::atomic<int>& times : done) {
        EXPECT_EQ(times, 1);
    }
}

TEST(ParallelTest, NoWorkIsDoneAtOnce) {
    forEachInParallel(0, [](size_t) { ADD_FAILURE() << "there is no work"; });
}

TEST(ParallelTest, HandsOnWhatAPieceOfWorkThrows) {
    const auto work = [](size_t i) {
        if (i == 3) {
            throw std::runtime_error("the fourth");
        }
    };
    EXPECT_THROW(forEachInParallel(100, work), std::runtime_error);
}

}  // namespace

}  // namespace mlk::tree
