#pragma once

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The persisted board id: the path of the board file of this set, or "DEFAULT_BOARD_ID" for none.
 *
 * A factory tool writes it to "board_id.bin" of the impdata partition, as what follows the first
 * "=" of a line that holds "BOARD_ID"; the service only reads it, once. Does not change afterwards
 * and so may be read from any thread. Log tag: "MlkProjectConfigs".
 */
class BoardID {
  public:
    /** Reads the board id. @param directory where the file lies; no "/" at its end */
    explicit BoardID(std::string directory);

    /**
     * The board id as the file has it: not trimmed, a carriage return or comment included. Empty
     * when the file cannot be opened or gives none.
     */
    const std::string& Get() const { return mBoardId; }

  private:
    const std::string mDirectory;
    const std::string mFilePath;
    std::string mBoardId;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
