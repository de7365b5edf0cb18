#pragma once

#include <gtest/gtest.h>
#include <hidlmemory/mapping.h>
#include <signal.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {

/** The real process on its own set, and the allocator of shared memory. */
class Delivery : public ::testing::Test {
  protected:
    void SetUp() override {
        writeProject(mSet);
        mAllocator = startAllocator();
        // The tests measure memory, so the address sanitizer must not keep what is freed.
        std::map<std::string, std::string> environment{
                {"ASAN_OPTIONS", "quarantine_size_mb=0:thread_local_quarantine_size_kb=0"}};
        environment.insert(mVariables.begin(), mVariables.end());
        mServer = std::make_unique<ServiceProcess>(environment);
        ASSERT_TRUE(mServer->waitUntilRegistered()) << mServer->process().err();
        mService = IMlkProjectConfigs::getService();
    }
    void stopAllocator() {
        mAllocator->kill(SIGKILL);
        mAllocator->wait();
    }
    /** Makes a file of that size; gives its path. */
    std::string file(size_t size) {
        mContent.resize(size);
        for (size_t i = 0; i < size; ++i) {
            mContent[i] = static_cast<char>(i * i >> 7);
        }
        return mSet.dir().write("tvdata/file", mContent);
    }
    bool isContent(const void* bytes, size_t size) const {
        const std::lock_guard<std::mutex> lock(mContentLock);
        return size == mContent.size() && memcmp(bytes, mContent.data(), size) == 0;
    }

    ::testing::AssertionResult isSharedWhole(const std::string& path) {
        auto result = ::testing::AssertionFailure() << "no answer";
        const auto status = mService->getVendorPartitionFile(
                path, [&](const ::android::hardware::hidl_memory& memory) {
                    const auto mapped = ::android::hardware::mapMemory(memory);
                    result = mapped == nullptr ? ::testing::AssertionFailure() << "not to be mapped"
                             : isContent(mapped->getPointer(), mapped->getSize())
                                     ? ::testing::AssertionSuccess()
                                     : ::testing::AssertionFailure() << "other bytes";
                });
        return status.isOk() ? result : ::testing::AssertionFailure() << status.description();
    }
    ::testing::AssertionResult isSentWhole(const std::string& path) {
        auto result = ::testing::AssertionFailure() << "no answer";
        const auto status =
                mService->getTvFile(path, [&](const ::android::hardware::hidl_vec<uint8_t>& bytes) {
                    result = isContent(bytes.data(), bytes.size())
                                     ? ::testing::AssertionSuccess()
                                     : ::testing::AssertionFailure() << "other bytes";
                });
        return status.isOk() ? result : ::testing::AssertionFailure() << status.description();
    }
    /** The blocks of memory that the service shares now; empty if there are no such blocks. */
    std::string shared(const std::string& path) {
        std::string answer = "no answer";
        const auto status = mService->getVendorPartitionFile(
                path, [&](const ::android::hardware::hidl_memory& memory) {
                    answer = !memory.valid() && memory.size() == 0 && memory.name().empty()
                                     ? "empty memory"
                                     : std::to_string(memory.size()) + " bytes of " +
                                               std::string(memory.name());
                });
        return status.isOk() ? answer : status.description();
    }
    /** How often the text is in the log that the test has received. */
    size_t logged(const std::string& text) const {
        const std::string log = mServer->process().err();
        size_t count = 0;
        for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) {
            ++count;
        }
        return count;
    }
    /** Waits until the log has the text that often; false if it does not get there. */
    bool isLogged(const std::string& text, size_t times = 1) const {
        return ::mlk::testing::eventually([&] { return logged(text) >= times; }) &&
               logged(text) == times;
    }
    pid_t pid() const { return mServer->process().pid(); }

    ::mlk::testing::HostSet mSet;
    std::map<std::string, std::string> mVariables;  // for the service, besides the test's
    std::unique_ptr<::mlk::testing::Process> mAllocator;
    std::unique_ptr<ServiceProcess> mServer;
    ::android::sp<IMlkProjectConfigs> mService;
    /** Tells the thread sanitizer which comes first: a change in one thread, a look in another. */
    mutable std::mutex mContentLock;
    std::string mContent;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0
