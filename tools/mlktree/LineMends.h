#pragma once

#include <string>
#include <string_view>

#include "tools/mlktree/FileLines.h"

namespace mlk::tree {

/** True for the formats whose lines fix may mend. */
bool isMendable(FileFormat format);

/** True for the formats that have items of sections, or of features. */
bool hasItems(FileFormat format);

/** True for lists of countries and languages. */
bool isList(FileFormat format);

/** Where a line stands, and what becomes of it. */
struct LineToMend {
    FileFormat format = FileFormat::NONE;
    bool isFirst = false; /**< of its file: a byte order mark may begin it */
    bool isUsed = false;  /**< by the service, so that each character matters */
    bool dropsCarriageReturns = false;
};

/**
 * The right form of a line, if that is known; else the line as it is.
 *
 * What the service reads of a line that is right in part is still read of its right form: no column
 * of a plan splits, no entry, name or value becomes empty, and a name in a script that needs
 * characters which nobody sees keeps them.
 *
 * @param line  without its line feed
 */
std::string mendedLine(const LineToMend& where, std::string_view line);

}  // namespace mlk::tree
