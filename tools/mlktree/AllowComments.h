#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/ReadObserver.h"
#include "tools/mlktree/Finding.h"

namespace mlk::tree {

/** A comment "mlktree: allow RULE reason" of a file. */
struct AllowComment {
    Place place;                /**< of the comment */
    std::string instruction;    /**< "allow"; another word is a mistake */
    std::string rule;           /**< may be empty or unknown */
    std::string reason;         /**< may be empty */
    size_t target = 0;          /**< the line that it speaks of; 0 if no line follows */
    bool isAtBeginning = false; /**< only comments come before it: it speaks of the file, too */
};

/**
 * The comments of a text file, as its reader understood the lines: a line that the reader uses is
 * no comment, even if it begins with "#".
 *
 * @param file   relative to the tree
 * @param lines  all lines of the file, in order
 */
std::vector<AllowComment> allowComments(
        const std::string& file,
        const std::vector<vendor::morlak::mlkconfigs::V1_0::implementation::ReadLine>& lines);

/** The comments of an XML file, by its source lines. */
std::vector<AllowComment> allowCommentsOfXml(const std::string& file,
                                             const std::vector<std::string_view>& lines);

}  // namespace mlk::tree
