#pragma once

#include <condition_variable>
#include <iosfwd>
#include <mutex>
#include <string>
#include <thread>

namespace mlk::tree {

/**
 * Tells a person at a terminal what takes so long: from one second on, a line that is rewritten
 * each second and removed at the end. Without a terminal it does nothing. The object's thread is
 * the only one that writes to the stream until stop().
 */
class Progress {
  public:
    /**
     * @param errors      standard error; must outlive the object
     * @param isTerminal  whether a person reads it
     */
    Progress(std::ostream& errors, bool isTerminal);
    ~Progress() { stop(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** Says what is done now: "reading the tree". */
    void now(const std::string& what);

    /** Removes the line. */
    void stop();

  private:
    void run();

    std::ostream& mErrors;
    std::mutex mMutex;  // guards what follows
    std::condition_variable mChanged;
    std::string mWhat;
    bool mIsDone = false;
    std::thread mThread;
};

}  // namespace mlk::tree
