#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "common/File.h"
#include "common/ReadObserver.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The persisted project index: which model of the product line this set is.
 *
 * "project_id.bin" of the impdata partition keeps it as one line "PROJECT_ID=<index>"; a factory
 * tool writes it once. Get may be called from any thread at any time; the caller serialises
 * changes. Log tag: "MlkProjectConfigs".
 *
 * The file is read in chunks of 256 bytes. The index follows the first "=" after the first word
 * "PROJECT_ID" of the first chunk that has this word. A "=" before the word does not count.
 */
class ProjectID {
  public:
    /**
     * Reads the index. Creates an empty file if it is missing. A file without an index gives 0,
     * which no project has. A file that can be read but not written is used, and the log says that
     * it cannot be opened for writing.
     *
     * @param directory     the folder of the file, without a "/" at its end
     * @param defaultIndex  the index if the file can be neither read nor created
     */
    ProjectID(const std::string& directory, unsigned int defaultIndex);

    /**
     * Reads the index as the constructor does, but creates nothing and needs no right to write.
     *
     * @param directory  the folder of the file, without a "/" at its end
     * @param observer   hears of the line that has the word "PROJECT_ID", and why the file cannot
     *                   be read; null for none
     * @return the index, 0 if the file has none; nullopt if it is missing or cannot be read
     */
    static std::optional<uint32_t> read(const std::string& directory,
                                        ReadObserver* observer = nullptr);

    /** The current index. */
    unsigned int Get() const { return mId; }

    /**
     * Changes the index and writes it to storage. The current index is written again only if it
     * could not be written before. That means an earlier Set: the default index counts as written,
     * although its file could be neither read nor created.
     *
     * @return false if the file could not be written, or memory ran out; the new index then lasts
     *         until the process ends, or until a later Set of it is written
     */
    bool Set(unsigned int index);

    /** Like Set. The name and number of the process that asks are not used. */
    bool SetId(unsigned int index, const std::string& processName, int pid);

    /** Ignores a trace message, which may be null. @return true */
    static bool WriteTestLog(const char* /* text */) { return true; }

  private:
    std::optional<uint32_t> readOrCreate() const;
    bool Write() const;

    const std::string mFilePath;
    std::atomic<uint32_t> mId = 0;
    bool mIsWritten = true;  // false while the file lacks the index that was set
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
