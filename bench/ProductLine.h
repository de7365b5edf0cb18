#pragma once

#include <cstddef>
#include <string>

#include "bench/ProjectText.h"
#include "host/testing/HostSet.h"

namespace mlk::bench {

/// How large a product line is.
struct Size {
    size_t items = 500;  // of the selected model, at least 100
    size_t models = 10;  // in the system file
    size_t countries = 200;
};

/// What the getter that is measured, getPanelName, answers on every such set.
constexpr const char* kPanelName = "OSMR-43U60-B2";

/// Makes the set one of a product line of this size: the sample product line, with a system file, a
/// model file and country files of its own. The last model is selected, and a country saved, as on
/// a set that has been in use.
void writeProductLine(testing::HostSet& set, const Size& size);

/// Makes it a set whose last of so many models has this file, and which has no board file; gives
/// the customer file.
std::string writeProject(const testing::HostSet& set, const ProjectText& project,
                         size_t models = 1);

}  // namespace mlk::bench
