#pragma once

#include <stdexcept>
#include <string>

namespace mlk::ctl {

/// How mlkctl ends, and what a line of a batch says. Never more than 125: a shell means signals and
/// programs that cannot be run by those.
enum class ExitStatus : int {
    ANSWERED = 0,
    UNREACHABLE = 1,  ///< The service cannot be reached. Also: standard output cannot be written.
    USAGE = 2,        ///< The command line is wrong.
    NO_ANSWER = 3,    ///< The method was called and gave no answer.
};

/// Why there is no answer: thrown from wherever that shows, reported once, by the verb (batch) or
/// by the command line. The message is one line for a person, without a period at its end; what it
/// quotes from the user is escaped and of bounded length.
class Failure : public std::runtime_error {
  public:
    Failure(ExitStatus status, const std::string& message)
        : std::runtime_error(message), mStatus(status) {}

    ExitStatus status() const { return mStatus; }

  private:
    ExitStatus mStatus;
};

/// A Failure for a command line that is wrong.
inline Failure usage(const std::string& message) {
    return {ExitStatus::USAGE, message};
}

}  // namespace mlk::ctl
