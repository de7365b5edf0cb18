#pragma once

#include <cstdint>
#include <string>

#include "common/Partitions.h"
#include "common/Properties.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The project items of a set, loaded for one model and board.
 *
 * Any number of threads may call; the caller serialises load(). Log tag: "MlkProjectConfigs".
 */
class ProjectStore {
  public:
    /**
     * Loads the items and logs where they come from.
     *
     * @param partitions  the set's mount points; must outlive the object
     * @param properties  decide how much is logged; must outlive the object
     * @param projectId   the model, the number after "Model_" in the system file
     * @param boardId     path of the board file; "DEFAULT_BOARD_ID" for none
     * @param customer    the customer file; empty for "customer.ini" of the tvconfigs partition
     * @param observer    hears of every line that is read; must outlive the object; null for none
     */
    ProjectStore(const Partitions& partitions, const Properties& properties, int projectId,
                 const std::string& boardId, const std::string& customer = "",
                 ReadObserver* observer = nullptr);

    /**
     * Loads the items of another model.
     *
     * @param boardId  empty for the board file in use
     * @return false, with the items as they were, if a file exists but cannot be read
     */
    bool load(int projectId, const std::string& boardId);

    /**
     * Logs where the items come from, and also each item if the property
     * "persist.vendor.mlk.configs.debug" is a number of at least 1.
     */
    void logItems() const;

    ProjectParser& items() { return mItems; }
    const ProjectParser& items() const { return mItems; }

  private:
    const Properties& mProperties;
    const std::string mCustomerIniPath;
    ProjectParser mItems;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
