#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "common/File.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The persisted project index: which model of the product line this set is.
 *
 * Kept in "project_id.bin" of the impdata partition as one line "PROJECT_ID=<index>", so that a
 * factory tool chooses it once. Get may be called from any thread at any time; the caller
 * serialises changes. Log tag: "MlkProjectConfigs".
 *
 * The file is read in chunks of 256 bytes. The first chunk with the word "PROJECT_ID" counts, and
 * in it the first "=" after the first such word: one before the word, as in a remark, does not.
 */
class ProjectID {
  public:
    /**
     * Reads the index. A file that is missing is created empty; one without an index gives 0, which
     * no project has. A file that can be read but not written counts, and the log says that it
     * cannot be opened for writing.
     *
     * @param directory     where the file lies; no "/" at its end
     * @param defaultIndex  the index when the file can be neither read nor created
     */
    ProjectID(std::string directory, unsigned int defaultIndex);

    unsigned int Get() const { return mId; }

    /**
     * Changes the index and writes it to storage. The current index is written again only if it
     * could not be written before.
     *
     * @return false when the file could not be written; the new index then lasts until the process
     *         ends, or until another Set of it succeeds
     */
    bool Set(unsigned int index);

    /** Like Set; the trace names the process that asked. */
    bool SetId(unsigned int index, const std::string& processName, int pid);

    /** Takes a trace message, where nothing listens. @return true */
    static bool WriteTestLog(const char* text);

  private:
    bool Read();
    bool ReadFrom(File& file);
    bool Change(unsigned int index);

    const std::string mDirectory;
    const std::string mFilePath;
    std::atomic<uint32_t> mId = 0;
    bool mIsWritten = true;  // false while the file lacks the index that was set
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
