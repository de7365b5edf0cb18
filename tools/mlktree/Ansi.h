#pragma once

/** How a terminal writes what follows, until kPlain. */
namespace mlk::tree::ansi {

inline constexpr const char* kPlain = "\033[0m";
inline constexpr const char* kBold = "\033[1m";
inline constexpr const char* kDim = "\033[2m";
inline constexpr const char* kRed = "\033[31m";
inline constexpr const char* kGreen = "\033[32m";
inline constexpr const char* kBoldRed = "\033[1;31m";
inline constexpr const char* kBoldGreen = "\033[1;32m";
inline constexpr const char* kBoldYellow = "\033[1;33m";
inline constexpr const char* kBoldCyan = "\033[1;36m";

}  // namespace mlk::tree::ansi
