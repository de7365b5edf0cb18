#include "host/testing/EnvironmentVariable.h"

#include <gtest/gtest.h>
#include <stdlib.h>

namespace mlk::testing {
namespace {

constexpr const char* kName = "MLK_NO_SUCH_VARIABLE";

TEST(EnvironmentVariable, HasItsValueWhileTheObjectLives) {
    {
        const EnvironmentVariable variable(kName, "value");
        EXPECT_STREQ(getenv(kName), "value");
        variable.set(std::string("another"));
        EXPECT_STREQ(getenv(kName), "another");
        variable.set(nullptr);
        EXPECT_EQ(getenv(kName), nullptr);
        variable.set("");
        EXPECT_STREQ(getenv(kName), "");
    }
    EXPECT_EQ(getenv(kName), nullptr) << "it was not set before";
}

TEST(EnvironmentVariable, HasItsFormerValueAfterwards) {
    const EnvironmentVariable outer(kName, std::string("former"));
    {
        const EnvironmentVariable inner(kName, nullptr);
        EXPECT_EQ(getenv(kName), nullptr);
    }
    EXPECT_STREQ(getenv(kName), "former");
}

}  // namespace
}  // namespace mlk::testing
