#pragma once

#include <string>
#include <vector>

#include "tools/mlkctl/Services.h"
#include "tools/mlkctl/tests/FakeServices.h"

namespace mlk::ctl {

/** What a command line did. */
struct Outcome {
    int status;
    std::string out;
    std::string err;
};

/** Runs mlkctl with these words in this process. */
Outcome runMlkctl(const std::vector<std::string>& words, Services& services,
                  const std::string& input = "");

/** The same on fakes that answer by the script; those of `missing` are not registered. */
Outcome runMlkctl(const std::vector<std::string>& words, Script& script,
                  const std::string& input = "", const std::set<std::string>& missing = {});

/** Finds fakes that answer by the script, which has to live longer. */
Services::Finder finderOf(Script& script, const std::set<std::string>& missing = {});

}  // namespace mlk::ctl
