#pragma once

#include <cstddef>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** What a reader made of a line. */
enum class LineUse {
    NOTHING, /**< an empty line, a comment, or a line that the format lets people write freely */
    SECTION, /**< begins a section, a TV system or the record of a country */
    ITEM,    /**< an item, an entry of a list, or a channel */
    IGNORED, /**< should have been one of these, but the reader skips it */
    LOST,    /**< not read at all, for example a last line without the line feed that it needs */
};

/**
 * One line of a text file, or one element of an XML file, as a reader understood it.
 *
 * The texts are valid during the call only. A format fills in what it has:
 *
 * | format | section | key | value |
 * |---|---|---|---|
 * | customer file | | "CUSTOMER_ID" or "SYS_INI" | the value |
 * | system file | | "Model_" and the number as written | the path |
 * | project, board, auxiliary file | its name, with brackets | the key | the value |
 * | TV feature file | | the key | the value |
 * | list | | the entry | |
 * | channel plan | | the first column | |
 * | TV system file | the attribute "category" | "key" | "value" |
 * | country map | | the element's name | its text |
 * | frequency map | the attribute "TYPE" | the element's name | its text |
 *
 * Values are cleaned, but partition names in them are not replaced by mount points.
 */
struct ReadLine {
    std::string_view path; /**< the file, as it was opened */
    size_t number = 0;     /**< of the line, from 1 */
    size_t column = 1;     /**< where the text begins in its line, from 1; 0 for XML */
    LineUse use = LineUse::NOTHING;
    std::string_view text;  /**< as the reader has it, without its line feed; empty for XML */
    bool isCut = false;     /**< the line is longer than its format allows */
    bool hasNul = false;    /**< a NUL byte ends the text early */
    std::string_view owner; /**< the TV system or the country that an XML element belongs to */
    std::string_view section;
    std::string_view key;
    std::string_view value;
    /**
     * False if the reader has an item of this name already, which the format either keeps or
     * replaces. Lists, channel plans and TV feature files do not tell.
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

    /** Called for every line that was read, in the order of the file. */
    virtual void onLine(const ReadLine& line) = 0;

    /**
     * Called for every problem that the reader also logs.
     *
     * @param path     the file
     * @param line     its number, from 1; 0 for a problem of the whole file
     * @param problem  a text without file and line
     */
    virtual void onProblem(std::string_view path, size_t line, std::string_view problem) = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
