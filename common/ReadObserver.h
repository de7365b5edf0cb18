#pragma once

#include <cstddef>
#include <string_view>

#include "common/ReadProblem.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** What a reader made of a line. */
enum class LineUse {
    NOTHING, /**< an empty line, a comment, or a line that the format lets people write freely */
    SECTION, /**< begins a section, a TV system or the record of a country */
    ITEM,    /**< an item, an entry of a list, or a channel */
    IGNORED, /**< should have been one of these, but the reader skips it */
    /**
     * The last line that a reader sees of a TV feature file, if it does not count: it has no line
     * feed, is too long or has a NUL. In the last two cases, the lines after it are neither read
     * nor told.
     */
    LOST,
};

/**
 * One line of a text file, or one element of an XML file, as a reader understood it.
 *
 * The texts are valid during the call only. If the use is NOTHING, section, key and value are
 * empty. Otherwise a format fills in what it has:
 *
 * | format | section | key | value |
 * |---|---|---|---|
 * | customer file | | "CUSTOMER_ID" or "SYS_INI" | the value |
 * | system file | | "Model_" and the index that the reader takes | the path |
 * | project, board, auxiliary file | its name, with brackets | the key | the value |
 * | TV feature file | | the key | the value |
 * | list | | the entry | |
 * | channel plan | | the first column | |
 * | saved identity | | "PROJECT_ID", "BOARD_ID" or "COUNTRY_ID" | the text after "=" |
 * | item of a TV system | the attribute "category" | "key" | "value" |
 * | other element of a TV system file | | the element's name | its text |
 * | country map | | the element's name | its text |
 * | map of channel plans | the attribute "TYPE" | the element's name | its text |
 *
 * Values are cleaned, but partition names in them are not replaced by mount points. A saved
 * identity is read up to the line that has it.
 *
 * A channel plan is read in pieces of at most 49 bytes, line feed included. Each piece is told by
 * itself, with its column. A piece that is no comment, but no channel either, is IGNORED.
 *
 * In a TV system file, an item whose key another TV system of the same name has is not new.
 */
struct ReadLine {
    std::string_view path; /**< the file, as it was opened */
    size_t number = 0;     /**< of the line, from 1 */
    size_t column = 1;     /**< the byte of its line where the text begins, from 1; 0 for XML */
    LineUse use = LineUse::NOTHING;
    std::string_view text;  /**< as the reader has it, without its line feed; empty for XML */
    bool isCut = false;     /**< the line goes on, because it is longer than its format allows */
    bool hasNul = false;    /**< a NUL byte ends the text early */
    std::string_view owner; /**< the TV system or the country that an XML element belongs to */
    std::string_view section;
    std::string_view key;
    std::string_view value;
    /**
     * False if the reader has an item of this name already, which the format either keeps or
     * replaces. In a map, each record has names of its own. Always true for sections, lists,
     * channel plans and TV feature files.
     */
    bool isNew = true;
};

/**
 * Hears what the readers of files make of every line.
 *
 * A service has no observer. A program that explains or checks files passes one to the reader, and
 * so needs no parser of its own. The reader's thread makes all calls, while it may hold the
 * reader's lock: an implementation must not call the reader.
 */
class ReadObserver {
  public:
    ReadObserver() = default;
    virtual ~ReadObserver() = default;
    ReadObserver(const ReadObserver&) = delete;
    ReadObserver& operator=(const ReadObserver&) = delete;

    /**
     * Called for every line that was read, in the order of the file. For an XML file, called for
     * the elements that the reader looks at, those at the top first, and the cable plans of a
     * country after its other elements.
     *
     * If a file cannot be read to its end, its reader may drop all items although their lines were
     * told; onProblem() tells of that afterwards.
     */
    virtual void onLine(const ReadLine& line) = 0;

    /**
     * Called for every problem of reading that is also logged, but not for a missing file or for an
     * element that a record lacks. The problems of a line come before the line. Its texts are valid
     * during the call only.
     */
    virtual void onProblem(const ReadProblem& problem) = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
