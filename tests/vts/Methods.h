#pragma once

#include <gtest/gtest.h>

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::vts {

/** Notes that the method was called. Any thread. */
void noteCall(const char* descriptor, const char* method);

/** Prints the table of methods: "IMlkTvConfigs::atvEnabled reads TESTS" a line. */
void listMethods();

/**
 * Fails the run when a method of the three interfaces was called by none of the tests: a run that
 * leaves none out and of which none failed. Setters count only when they may be called.
 */
class EveryMethod : public ::testing::Environment {
  public:
    void TearDown() override;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
