#include <gtest/gtest.h>

#include "tests/vts/Methods.h"
#include "tests/vts/Options.h"

int main(int argc, char** argv) {
    // --gtest_help is GoogleTest's own; --help is ours.
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--help") {
            return readOptions(argc, argv);
        }
    }
    ::testing::InitGoogleTest(&argc, argv);
    const int done = readOptions(argc, argv);
    if (done >= 0) {
        return done;
    }
    ::testing::AddGlobalTestEnvironment(new vendor::morlak::mlkconfigs::V1_0::vts::EveryMethod);
    return RUN_ALL_TESTS();
}
