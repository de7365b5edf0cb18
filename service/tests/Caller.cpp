// A client process that calls every method with random arguments.
//
//   service_caller SEED SECONDS CALLS
//
// Ends after SECONDS or CALLS, whichever comes first; 0 calls is no limit. Writes the number of
// calls. Its status is 0 unless a call found its object dead.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>

#include "service/tests/InterfaceMethods.h"

using namespace vendor::morlak::mlkconfigs::V1_0;

namespace {

// Methods that write or read files take a hundred times as long as the others. They are called a
// hundred times less often, so that the others get their share.
bool isSlow(std::string_view name) {
    constexpr std::string_view kSlow[] = {"set",
                                          "reload",
                                          "getTvFile",
                                          "getVendorPartitionFile",
                                          "getFreqTableList",
                                          "getCountryList",
                                          "getCLTVCountryList",
                                          "getLanguageList",
                                          "getProjectIniList"};
    return std::any_of(std::begin(kSlow), std::end(kSlow), [&](std::string_view start) {
        return name.substr(0, start.size()) == start;
    });
}

template <typename Interface>
bool callOne(Interface& object, RandomArguments& random) {
    const auto& rows = methodRows<Interface>();
    constexpr size_t kRarely = 100;
    size_t chosen = random.below(rows.size());
    while (isSlow(rows[chosen].name) && random.below(kRarely) != 0) {
        chosen = random.below(rows.size());
    }
    const auto& row = rows[chosen];
    const bool done = row.callAnyhow(object, random);
    if (!done) {
        std::cerr << row.name << " was neither answered nor refused\n";
    }
    return done;
}

}  // namespace

int main(int, char** argv) {
    const auto seed = static_cast<unsigned int>(std::stoul(argv[1]));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::stol(argv[2]));
    const uint64_t limit = std::stoull(argv[3]);
    const auto project = IMlkProjectConfigs::getService();
    const auto tv = IMlkTvConfigs::getService();
    const auto framework = IMlkFrameworkConfigs::getService();
    RandomArguments random(seed, std::string(getenv("MLK_ROOT")) + "/tvconfigs");
    uint64_t calls = 0;
    while ((limit == 0 || calls < limit) && std::chrono::steady_clock::now() < end) {
        if (!callOne(*project, random) || !callOne(*tv, random) || !callOne(*framework, random)) {
            return EXIT_FAILURE;
        }
        calls += 3;
    }
    std::cout << calls << std::endl;
    return EXIT_SUCCESS;
}
