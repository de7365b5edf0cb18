#pragma once

#include <string_view>

namespace mlk::tree {

// The page of a report: the files of page/, put together by page/embed.py when the program is
// built. The texts that a report has of its own stand between these pieces.

extern const std::string_view kPageBegin;  /**< up to the summary */
extern const std::string_view kPageMiddle; /**< between the summary and the data */
extern const std::string_view kPageEnd;    /**< after the data */

}  // namespace mlk::tree
