#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "common/ReplaceFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The persisted project index: which model of the product line this set is.
 *
 * Kept in "project_id.bin" of the impdata partition as one line "PROJECT_ID=<index>", so that a
 * factory tool chooses it once. Get may be called from any thread at any time; the caller
 * serialises changes. Log tag: "MlkProjectConfigs".
 */
class ProjectID {
  public:
    /**
     * Reads the index. A file that is missing is created empty; one without an index gives 0, which
     * no project has.
     *
     * @param directory     where the file lies; no "/" at its end
     * @param defaultIndex  the index when the file can be neither opened nor created
     */
    ProjectID(std::string directory, unsigned int defaultIndex);

    unsigned int Get() const { return mId; }

    /**
     * Changes the index and writes it to storage; an index that is the current one writes nothing.
     *
     * @return false when the file could not be written; the new index then lasts until the process
     *         ends
     */
    bool Set(unsigned int index);

    /** Like Set; the trace names the process that asked. */
    bool SetId(unsigned int index, const std::string& processName, int pid);

    /** Takes a trace message, where nothing listens. @return true */
    static bool WriteTestLog(const char* text);

  private:
    void Read(unsigned int defaultIndex);
    bool Change(unsigned int index);
    Replaced ReplaceLine(const std::string& line) const;

    const std::string mDirectory;
    const std::string mFilePath;
    std::atomic<uint32_t> mId = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
