#include "tests/vts/tests/VtsRun.h"

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "host/testing/Eventually.h"

namespace mlk::vts {

namespace fs = std::filesystem;
using testing::Process;
using vendor::morlak::mlkconfigs::V1_0::IMlkFrameworkConfigs;

VtsRun::VtsRun() {
    mSet.copyFrom(testing::sourceDir() + "/samples/partitions");
}

void VtsRun::start(const std::string& program,
                   const std::map<std::string, std::string>& environment) {
    mProgram = program;
    mEnvironment = environment;
    mAllocator = std::make_unique<Process>(
            std::vector<std::string>{testing::binDir() + "/android.hidl.allocator@1.0-service"},
            Process::Options{{{"ANDROID_LOG_TAGS", "*:D"}}});
    ASSERT_TRUE(mAllocator->waitForErr("registered IAllocator")) << mAllocator->err();
    startService();
}

void VtsRun::startService() {
    mService = nullptr;
    mService = std::make_unique<Process>(std::vector<std::string>{mProgram},
                                         Process::Options{mEnvironment});
    // A start registers this one last.
    ASSERT_TRUE(testing::eventually([&] {
        return IMlkFrameworkConfigs::tryGetService() != nullptr || !mService->running();
    })) << mService->err();
    ASSERT_TRUE(mService->running()) << mService->err();
}

std::unique_ptr<Process> VtsRun::begin(std::vector<std::string> options) {
    options.insert(options.begin(), VTS_PROGRAM);
    return std::make_unique<Process>(std::move(options));
}

VtsRun::Outcome VtsRun::run(std::vector<std::string> options) {
    const auto process = begin(std::move(options));
    const int status = process->wait();
    return {status, process->out() + process->err()};
}

void VtsRun::edit(const std::string& file, const std::string& text,
                  const std::string& other) const {
    std::string content = mSet.dir().read(file);
    const size_t place = content.find(text);
    if (place == std::string::npos) {
        throw std::runtime_error(file + " does not hold " + text);
    }
    mSet.dir().write(file, content.replace(place, text.size(), other));
}

std::map<std::string, std::string> VtsRun::files() const {
    std::map<std::string, std::string> all;
    for (const char* folder : {"tvconfigs", "tvdata", "impdata", "data/property"}) {
        for (const auto& entry : fs::recursive_directory_iterator(mSet.dir().path(folder))) {
            const std::string name = fs::relative(entry.path(), mSet.dir().path()).string();
            if (entry.is_regular_file()) {
                all[name] = mSet.dir().read(name);
            }
            if (std::string(folder) == "data/property" && all[name].empty()) {
                all.erase(name);
            }
        }
    }
    return all;
}

std::vector<std::vector<std::string>> VtsRun::methods() {
    const Outcome listed = run({"--list-methods"});
    EXPECT_EQ(listed.status, 0) << listed.out;
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(listed.out);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        rows.emplace_back();
        for (std::string word; words >> word;) {
            rows.back().push_back(word);
        }
    }
    return rows;
}

}  // namespace mlk::vts
