#pragma once

#include <gtest/gtest.h>

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::vts {

/** Notes that the method was called. Any thread. */
void noteCall(const char* descriptor, const char* method);

/** Prints the table of methods: "IMlkTvConfigs::atvEnabled reads TESTS" a line. */
void listMethods();

/**
 * Fails the run if no test called some method of the three interfaces. Applies only to a run of all
 * tests in which no test failed. Setters count only if they may be called.
 */
class EveryMethod : public ::testing::Environment {
  public:
    void TearDown() override;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
