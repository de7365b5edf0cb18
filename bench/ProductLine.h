#pragma once

#include <cstddef>
#include <string>

#include "bench/ProjectText.h"
#include "host/testing/HostSet.h"

namespace mlk::bench {

/** The size of a product line. */
struct Size {
    size_t items = 500;  // of the selected model, at least 100
    size_t models = 10;  // in the system file
    size_t countries = 200;
};

/** The answer of getPanelName, the measured getter, on every such set. */
constexpr const char* kPanelName = "OSMR-43U60-B2";

/**
 * Writes a product line of this size to the set: the sample product line with generated system,
 * model and country files. Selects the last model and saves a country, as on a set in use.
 */
void writeProductLine(testing::HostSet& set, const Size& size);

/**
 * Writes a set with this many models, of which the last has this file, and without a board file.
 * Returns the path of the customer file.
 */
std::string writeProject(const testing::HostSet& set, const ProjectText& project,
                         size_t models = 1);

}  // namespace mlk::bench
