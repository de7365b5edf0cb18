#pragma once

#include <string>

#include "tools/mlktree/CheckReport.h"
#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** What a report has to tell: two JSON texts that the page's script reads. */
struct ReportData {
    std::string summary; /**< what the overview shows; small */
    std::string data;    /**< everything else; large */
};

/**
 * Collects what a report tells of a product line.
 *
 * The same line and findings give the same texts. page/data.js describes what they hold.
 *
 * @param line    must be whole
 * @param report  of a check of the line
 */
ReportData reportDataOf(const ProductLine& line, const CheckReport& report);

}  // namespace mlk::tree
