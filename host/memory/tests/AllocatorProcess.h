#pragma once

#include <android/hidl/allocator/1.0/IAllocator.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"

namespace mlk::host {

/**
 * A temporary set in which the allocator's program runs, started by `starter` if given ("prlimit",
 * "--nofile=40"). The address sanitizer must not keep freed memory there, so that tests can measure
 * the process's memory.
 */
class AllocatorProcess {
  public:
    explicit AllocatorProcess(std::vector<std::string> starter = {})
        : mProcess(command(std::move(starter)),
                   {{{"ANDROID_LOG_TAGS", "*:D"},
                     {"ASAN_OPTIONS", "quarantine_size_mb=0:thread_local_quarantine_size_kb=0"}},
                    ""}) {
        EXPECT_TRUE(mProcess.waitForErr("registered IAllocator"));
    }

    ::android::sp<::android::hidl::allocator::V1_0::IAllocator> service() const {
        return ::android::hidl::allocator::V1_0::IAllocator::getService("ashmem");
    }
    mlk::testing::Process& process() { return mProcess; }
    pid_t pid() const { return mProcess.pid(); }

  private:
    static std::vector<std::string> command(std::vector<std::string> starter) {
        starter.push_back(mlk::testing::binDir() + "/android.hidl.allocator@1.0-service");
        return starter;
    }

    mlk::testing::HostSet mSet;
    mlk::testing::Process mProcess;
};

}  // namespace mlk::host
