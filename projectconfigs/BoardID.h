#pragma once

#include <string>

#include "common/ReadObserver.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The persisted board id: the path of the board file of this set, or "DEFAULT_BOARD_ID" for none.
 *
 * A factory tool writes it to "board_id.bin" of the impdata partition: the id is the text after the
 * first "=" of a line that contains "BOARD_ID". The service only reads the file, once. The object
 * does not change afterwards, and any thread may read it. Log tag: "MlkProjectConfigs".
 */
class BoardID {
  public:
    /**
     * Reads the board id.
     *
     * @param directory  the folder of the file, without a "/" at its end
     * @param observer   hears of every line up to that of the board id; null for none
     */
    explicit BoardID(const std::string& directory, ReadObserver* observer = nullptr);

    /**
     * The board id as the file has it: not trimmed, with its carriage return or comment. Empty if
     * the file cannot be opened or has no board id.
     */
    const std::string& Get() const { return mBoardId; }

  private:
    std::string mBoardId;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
