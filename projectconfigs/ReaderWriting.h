#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * How long a reader may leave all that was written where it is. One that works is there within
 * milliseconds even on a busy set.
 */
inline constexpr std::chrono::milliseconds kReaderPatience(750);

/** How many readers of pipes, sockets and terminals may be waited for at once. */
inline constexpr int kWaitForReaders = 2;

enum class WriteOutcome {
    COMPLETE,
    FAILED,   ///< the descriptor takes nothing (any more)
    UNREAD,   ///< its reader took nothing for kReaderPatience
    CROWDED,  ///< as many threads as may write, or wait for readers, do so already
};

/** What became of a text. */
struct Written {
    WriteOutcome outcome;
    size_t size;  ///< bytes that the descriptor took
};

/**
 * Writes `text` to a pipe, a socket, a file or a terminal. A reader that reads gets all of it: from
 * a pipe or a terminal at least a byte each kReaderPatience, from a socket 4 KiB. The flags of the
 * descriptor stay as they are, because they are the client's too. The calling thread must have
 * SIGPIPE blocked. Any number of threads.
 *
 * Returns only when the reader is done or is given up: that may take as long as the text is long
 * and the reader slow. A file system that does not answer holds the thread for as long as it likes,
 * because nothing asks the system whether a write would wait.
 */
Written writeToReader(int descriptor, std::string_view text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
