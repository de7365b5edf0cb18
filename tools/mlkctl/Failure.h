#pragma once

#include <stdexcept>
#include <string>

namespace mlk::ctl {

/**
 * The exit status of mlkctl and of each line of a batch. Never more than 125: shells use higher
 * numbers for signals and for programs that cannot be run.
 */
enum class ExitStatus : int {
    ANSWERED = 0,
    UNREACHABLE = 1,  // the service cannot be reached, or standard output cannot be written
    USAGE = 2,        // the command line is wrong
    NO_ANSWER = 3,    // the method was called and gave no answer
};

/**
 * The reason why there is no answer. The code that detects it throws it; the batch verb or the
 * command line reports it once. The message is one line for a person, without a period at its end;
 * quotations of the user's input are escaped and of bounded length.
 */
class Failure : public std::runtime_error {
  public:
    Failure(ExitStatus status, const std::string& message)
        : std::runtime_error(message), mStatus(status) {}

    ExitStatus status() const { return mStatus; }

  private:
    ExitStatus mStatus;
};

/** A Failure for a command line that is wrong. */
inline Failure usage(const std::string& message) {
    return {ExitStatus::USAGE, message};
}

}  // namespace mlk::ctl
