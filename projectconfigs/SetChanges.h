#pragma once

#include <cstdint>
#include <mutex>

#include "projectconfigs/BoardID.h"
#include "projectconfigs/ProjectID.h"
#include "projectconfigs/ProjectSet.h"
#include "regional/CountryTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Changes of a set that outlive a restart: its model and its country.
 *
 * Any thread may call. One change runs at a time, so that the items of a country are all put into
 * the items of the same model. Log tag: "MlkProjectConfigs".
 */
class SetChanges {
  public:
    /** All arguments must outlive the object. */
    SetChanges(ProjectSet& set, ProjectID& projectId, const BoardID& boardId);

    /**
     * Changes the model: reads its items, with the board file in use, and saves its index. For an
     * index above the highest known one, first reads the files of the present model again, to look
     * for new models. What is read replaces all items, so the country's values are gone until
     * setCountry() or the next start, even if the result is false after the first reading.
     *
     * @return false, with the model unchanged, if the index is not accepted (accepted are 1 to the
     *         highest) or if a file of the model exists but cannot be read; true even if the index
     *         could not be saved
     */
    bool setProject(int32_t id);

    /** The same without the search for new models. */
    bool setKnownProject(int32_t id);

    /**
     * Puts the country's values into the items of the set, and saves the country. A later change of
     * the model removes these values. kNoCountry stands for the saved country or, if none is saved
     * yet, for the first one of the country map, which is saved then.
     *
     * @return true if the country was saved; always false for kNoCountry
     */
    bool setCountry(_tv_country country);

  private:
    bool selectLocked(int32_t id, const char* endOfRefusal);

    ProjectSet& mSet;
    ProjectID& mProjectID;
    const BoardID& mBoardID;
    std::mutex mMutex;  // held during a change
    int32_t mProjectMaxIdx;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
