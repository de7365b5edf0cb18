#pragma once

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** What the service makes of a configured value. */
enum class ValueType {
    TEXT,   /**< answered as it is */
    PATH,   /**< of a file; a leading partition name is replaced by its mount point */
    FOLDER, /**< path of a folder */
    SWITCH, /**< true for exactly "true", false for everything else */

    /**
     * A decimal number of 32 bits. What follows the digits is ignored; a text that does not begin
     * with a number counts as 0.
     */
    INTEGER,

    FEATURE,         /**< "true", "false", or a decimal number, of which those above 0 are true */
    PROPERTY_SWITCH, /**< 1, true, y, yes, on or their opposites; any other text counts as missing
                      */

    /**
     * A number of 32 bits whose prefix selects the base: 0x10 is 16, 010 is 8. What follows the
     * digits is ignored; a text that is no such number counts as missing.
     */
    PROPERTY_NUMBER,
    INVERTED_NUMBER, /**< the same; 0, and a missing one, is true, any other number is false */
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
