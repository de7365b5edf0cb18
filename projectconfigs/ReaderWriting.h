#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * How long a reader may read nothing. A working reader reads within milliseconds, even on a busy
 * set.
 */
inline constexpr std::chrono::milliseconds kReaderPatience(750);

/** How many threads may wait for readers of pipes, sockets and terminals at once. */
inline constexpr int kWaitForReaders = 2;

enum class WriteOutcome {
    COMPLETE,
    FAILED,  /**< the descriptor takes no bytes, or no more */
    UNREAD,  /**< the reader read nothing for kReaderPatience */
    CROWDED, /**< too many threads write, or wait for readers, already */
};

/** The result of writing a text. */
struct Written {
    WriteOutcome outcome;
    size_t size; /**< bytes that the descriptor took */
};

/**
 * Writes `text` to a pipe, a socket, a file or a terminal. A reader gets all of it if it keeps
 * reading: in each kReaderPatience at least one byte from a pipe or a terminal, 4 KiB from a
 * socket. The flags of the descriptor stay as they are, because the client shares them. The calling
 * thread must have SIGPIPE blocked. Any number of threads may call.
 *
 * Returns only when the text is written or given up. A long text and a slow reader take long. A
 * file system that does not answer blocks the thread without limit, because the system cannot tell
 * whether a write to a file would wait.
 */
Written writeToReader(int descriptor, std::string_view text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
