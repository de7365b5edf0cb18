#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * How long a reader may leave all that was written where it is. One that works is there within
 * milliseconds even on a busy set; one that is stopped keeps its thread of the pool so long.
 */
inline constexpr std::chrono::milliseconds kReaderPatience(1000);

/**
 * How many threads may write to clients at once: whatever the other ends do, four of the ten of the
 * pool are left. Those of them that wait for readers of pipes and sockets are fewer.
 */
inline constexpr int kWriters = 6;
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
 * Writes `text` to a descriptor that a client has sent: a pipe, a socket, a file or a terminal. A
 * reader that reads gets all of it, however slowly it reads from a pipe, and 4 KiB a second from a
 * socket; one that does not costs no more than kReaderPatience. The descriptor stays open and its
 * flags as they are, which are the client's too. Keeps the calling thread's SIGPIPE from ending the
 * process. Any number of threads.
 *
 * Some hold their thread for as long as they like, because nothing asks the system whether it would
 * wait: a file system that does not answer, a terminal that takes nothing, and a client that has
 * its pipe in use for a call of its own that does not end. These are why kWriters is what it is.
 */
Written writeToClient(int descriptor, std::string_view text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
