#pragma once

#include <csignal>

#include <chrono>

namespace mlk::ctl {

/**
 * While it lives, SIGINT and SIGTERM end a pause instead of the process; during a Question they end
 * the process with the status of the question. Threads that are started meanwhile do not take them.
 * One object at a time; create it before other threads.
 */
class Interrupts {
  public:
    Interrupts();
    ~Interrupts();
    Interrupts(const Interrupts&) = delete;
    Interrupts& operator=(const Interrupts&) = delete;

    enum class Pause { OVER, INTERRUPTED, NO_READER };

    /**
     * Waits for this time. Ends at once if a signal comes or has come since the object exists, or
     * if nobody reads the pipe of the descriptor any more.
     */
    Pause wait(std::chrono::duration<double> time, int descriptor) const;

    /**
     * While it lives, a signal ends the process at once, with this status: for questions that may
     * take long. So does one that has come since the Interrupts exist. Write all output before.
     */
    class Question {
      public:
        Question(const Interrupts& interrupts, int status);
        ~Question();
        Question(const Question&) = delete;
        Question& operator=(const Question&) = delete;
    };

  private:
    sigset_t mFormerMask;
    struct sigaction mFormerInterrupt;
    struct sigaction mFormerTermination;
};

}  // namespace mlk::ctl
