#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// How bytes are shown. Texts of the service are bytes; most are UTF-8, but nothing holds a file to
/// that. JSON is UTF-8, so a byte XX that is no part of valid UTF-8 is written as the escape \udcXX
/// (half of a surrogate pair, which no valid text has) and read back as that byte.
namespace mlk::ctl {

/// Appends a text as a JSON string, with its quotes. Valid UTF-8 stands as it is; quotes, backslash
/// and control characters (DEL and C1 among them) are escaped, other bytes are \udcXX. Surrogates,
/// overlong forms and what is beyond U+10FFFF are not valid.
void appendJsonString(std::string& out, std::string_view text);

/// The same as a text of its own.
std::string jsonString(std::string_view text);

/// A text of the user's for a message: as a JSON string, cut after 60 bytes and "..." then.
std::string excerpt(std::string_view text);

/// A text for a terminal: as in JSON, but without quotes, and with quotes and backslashes as they
/// are. It cannot move the cursor or start a line.
std::string printable(std::string_view text);

/// A text of several lines for a terminal: as printable(), but newlines and tabs stay.
std::string forTerminal(std::string_view text);

/// The bytes in base64 with padding (RFC 4648).
std::string base64(const uint8_t* bytes, size_t size);

/// A word of the command line with its \udc80 to \udcff (backslash, u, four hexadecimal digits)
/// read as the bytes 80 to ff; nothing else is an escape, a backslash stands for itself.
std::string withoutByteEscapes(std::string_view word);

/// Makes a JSON text with lone \udc80 to \udcff, which no JSON parser takes, into one without.
/// When there is one, gives true: then every string in the parsed text has to go through
/// restoreBytes. A low surrogate behind a high one is a pair and stays.
bool hideByteEscapes(std::string_view json, std::string* plain);

/// Puts the bytes back into a string of a text that hideByteEscapes changed.
std::string restoreBytes(std::string_view text);

/// The texts with ", " between them.
std::string joined(const std::vector<std::string>& texts);

}  // namespace mlk::ctl
