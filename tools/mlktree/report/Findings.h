#pragma once

#include <string>

#include "tools/mlktree/CheckReport.h"
#include "tools/mlktree/report/FileTable.h"
#include "tools/mlktree/report/TextTable.h"

namespace mlk::tree {

/** The files that findings of a check stand in or refer to, each once. */
std::vector<std::string> filesOf(const CheckReport& report);

/** The findings that count and those that are allowed, as JSON. */
std::string findingsJson(const CheckReport& report, const FileTable& files, TextTable& texts);

/** All rules with their pages, as JSON. */
std::string rulesJson();

}  // namespace mlk::tree
