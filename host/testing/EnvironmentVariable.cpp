#include "host/testing/EnvironmentVariable.h"

#include <stdlib.h>

namespace mlk::testing {

EnvironmentVariable::EnvironmentVariable(const char* name, const char* value) : mName(name) {
    if (const char* former = getenv(name)) {
        mFormer = former;
    }
    set(value);
}

EnvironmentVariable::EnvironmentVariable(const char* name, const std::string& value)
    : EnvironmentVariable(name, value.c_str()) {}

EnvironmentVariable::~EnvironmentVariable() {
    set(mFormer ? mFormer->c_str() : nullptr);
}

void EnvironmentVariable::set(const char* value) const {
    if (value != nullptr) {
        setenv(mName, value, 1);
    } else {
        unsetenv(mName);
    }
}

}  // namespace mlk::testing
