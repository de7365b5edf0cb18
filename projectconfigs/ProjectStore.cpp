#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/ProjectStore.h"

#include <log/log.h>

#include "common/Decimal.h"
#include "projectconfigs/ChainKeywords.h"
#include "projectconfigs/KnownProperties.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

ProjectStore::ProjectStore(const Partitions& partitions, const Properties& properties,
                           int projectId, const std::string& boardId, const std::string& customer,
                           ReadObserver* observer)
    : mProperties(properties),
      mCustomerIniPath(customer.empty() ? partitions.tvconfigs + keyword::kCustomerFile : customer),
      mItems(partitions.tvdata.c_str(), partitions.tvconfigs.c_str(), partitions.impdata.c_str(),
             observer) {
    load(projectId, boardId);
    ALOGD("mProjectMaxIdx:%d", static_cast<int>(mItems.getProjectMaxIdx()));
    logItems();
}

bool ProjectStore::load(int projectId, const std::string& boardId) {
    return mItems.update(mCustomerIniPath.c_str(), projectId, boardId);
}

void ProjectStore::logItems() const {
    if (parseDecimal(mProperties.get(property::kLogItems)) < 1) {
        mItems.dump();
    } else {
        mItems.dumpDetail();
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
