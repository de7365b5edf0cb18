#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/**
 * How bytes are shown. Texts of the service are bytes; most are UTF-8, but files may hold anything.
 * JSON is UTF-8, so a byte XX outside of valid UTF-8 is written as the escape \udcXX (half of a
 * surrogate pair, which no valid text has) and read back as that byte.
 */
namespace mlk {

/**
 * Appends a text as a JSON string, with its quotes. Valid UTF-8 stays as it is; quotes, backslashes
 * and control characters (including DEL and C1) are escaped, other bytes become \udcXX.
 */
void appendJsonString(std::string& out, std::string_view text);

/** The same, as a new string. */
std::string jsonString(std::string_view text);

/** The user's text for a message: as a JSON string; after 60 bytes "..." replaces the rest. */
std::string excerpt(std::string_view text);

/**
 * A text for a terminal: as in JSON, but without the outer quotes, and with quotes and backslashes
 * unescaped. It cannot move the cursor or start a line.
 */
std::string printable(std::string_view text);

/** A text of several lines for a terminal: as printable(), but newlines and tabs stay. */
std::string forTerminal(std::string_view text);

/** The bytes in base64 with padding (RFC 4648). */
std::string base64(const uint8_t* bytes, size_t size);

/**
 * A word of the command line in which \udc80 to \udcff (backslash, u, four hexadecimal digits) are
 * replaced by the bytes 80 to ff. There are no other escapes: a backslash stands for itself.
 */
std::string withoutByteEscapes(std::string_view word);

/**
 * Replaces lone \udc80 to \udcff in a JSON text, which no JSON parser accepts. Returns true if
 * there are any: then every string of the parsed text has to go through restoreBytes. A low
 * surrogate after a high one is a pair and stays.
 */
bool hideByteEscapes(std::string_view json, std::string* plain);

/** Puts the bytes back into a string of a text that hideByteEscapes changed. */
std::string restoreBytes(std::string_view text);

/** The texts with ", " between them. */
std::string joined(const std::vector<std::string>& texts);

}  // namespace mlk
