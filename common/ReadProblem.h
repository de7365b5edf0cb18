#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** What keeps a reader from using a file, or a line or element of it. */
enum class ProblemKind {
    UNREADABLE,      /**< the file cannot be read, or not whole; the detail is the reason */
    TOO_LARGE,       /**< the file exceeds its limit; the detail is that of largerThan() */
    READ_ERROR,      /**< reading failed after some lines; the detail is the reason */
    MALFORMED_XML,   /**< the detail is what the parser expects */
    COSTLY_XML,      /**< loading would take long; the detail is what there is too much of */
    LONG_LINE,       /**< the line counts up to its limit, the detail, in bytes */
    LAST_LINE,       /**< the same, and nothing after it is read */
    NO_EQUALS,       /**< the line has no "=" */
    NO_VALUE,        /**< the line of an auxiliary file has no value */
    ONLY_COMMAS,     /**< the line of a list has no entry */
    NO_INDEX,        /**< project_id.bin has no index up to its limit, the detail, in bytes */
    NO_TYPE,         /**< a TV system has no name */
    INCOMPLETE_ITEM, /**< an item of a TV system lacks an attribute */
    NO_COUNTRY,      /**< a block of a map names no country */
};

/** A problem of reading. The texts are valid as long as those that it was made of. */
struct ReadProblem {
    std::string_view path;
    size_t line = 0; /**< from 1, also if the file cannot be read on after it; 0 for the file */
    ProblemKind kind = ProblemKind::UNREADABLE;
    std::string_view detail; /**< empty if its kind has none */
};

/** What the log says of a problem, without file and line. */
std::string textOf(ProblemKind kind, std::string_view detail = "");

/** True if nothing of a file with such a problem is used. */
bool isWholeFileLost(ProblemKind kind);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
