#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "samples/tests/SampleSet.h"

namespace mlk::samples {

/** A copy of the sample under the real service, asked by the real client. */
class ServedSample : public ::testing::Test {
  protected:
    ServedSample() { mSet.copyFrom(samplesFolder() / "partitions"); }

    void SetUp() override { start(); }

    /** Starts the service, in place of the one that runs, and waits until it answers. */
    void start() {
        mService = nullptr;
        mService = std::make_unique<testing::Process>(std::vector<std::string>{
                testing::binDir() + "/vendor.morlak.mlconfigs@1.0-service"});
        ASSERT_EQ(
                testing::Process({testing::binDir() + "/mlkctl", "wait", "--timeout", "60"}).wait(),
                0);
    }

    /** What mlkctl prints when it is given these words. */
    static std::string mlkctl(std::vector<std::string> words) {
        words.insert(words.begin(), testing::binDir() + "/mlkctl");
        testing::Process process(std::move(words));
        EXPECT_EQ(process.wait(), 0) << process.err();
        return process.out();
    }

    /** The same for a call: interface, method, arguments. */
    static std::string call(std::vector<std::string> words) {
        words.insert(words.begin(), "call");
        return mlkctl(std::move(words));
    }

    testing::HostSet mSet;
    std::unique_ptr<testing::Process> mService;
};

}  // namespace mlk::samples
