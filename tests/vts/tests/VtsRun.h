#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"

namespace mlk::vts {

/** A copy of the sample with services on it, and the test program on them. */
class VtsRun : public ::testing::Test {
  protected:
    VtsRun();

    /**
     * Starts the allocator of shared memory, and the service: that program, with these variables.
     */
    void start(const std::string& program = testing::binDir() +
                                            "/vendor.morlak.mlconfigs@1.0-service",
               const std::map<std::string, std::string>& environment = {});
    /** Starts the same service again. */
    void startService();

    struct Outcome {
        int status;
        std::string out;
    };
    /** Runs the test program to its end. */
    static Outcome run(std::vector<std::string> options);
    static std::unique_ptr<testing::Process> begin(std::vector<std::string> options);

    /** Replaces the first place of a text in a file of the set. */
    void edit(const std::string& file, const std::string& text, const std::string& other) const;

    /** Every file of the set and its content, without properties that are empty. */
    std::map<std::string, std::string> files() const;

    /** Lines of --list-methods: {"IMlkTvConfigs::atvEnabled", "reads", "TvAnswers"}. */
    static std::vector<std::vector<std::string>> methods();

    testing::HostSet mSet;
    std::unique_ptr<testing::Process> mAllocator;
    std::unique_ptr<testing::Process> mService;

  private:
    std::string mProgram;
    std::map<std::string, std::string> mEnvironment;
};

}  // namespace mlk::vts
