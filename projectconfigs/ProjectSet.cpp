#include "projectconfigs/ProjectSet.h"

#include <utility>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr AuxiliaryFileSource kKaraoke = {"[KARAOKE]", "KARAOKE_CONFIG_PATH",
                                          "mKarakeName:", "Can't get karaoke config path!"};
constexpr AuxiliaryFileSource kGlobalKeys = {"[KEY]", "KEY_CONFIG_PATH",
                                             "mGlobalKeyName:", "Can't get key config path!"};
constexpr AuxiliaryFileSource kCustomerDdcci = {
        "[DDCCI]", "CUSTOMER_DDCCI_PATH",
        "[DDCCI] mCustomerDdcciName: ", "Can't get Customer DDCCI config path!",
        "[DDCCI] customerDdcciConfigPath = "};

}  // namespace

// The members are constructed, and the files read, in the order of their declaration.
ProjectSet::ProjectSet(Partitions partitions, const Properties& properties, RegionalData& data,
                       const SetIdentity& identity, ReadObserver* observer)
    : mPartitions(std::move(partitions)),
      mStore(mPartitions, properties, identity.projectId, identity.boardId, identity.customer,
             observer),
      mSounds(mStore.items(), mPartitions, properties.get("ro.hardware"), observer),
      mKaraoke(mStore.items(), kKaraoke, observer),
      mGlobalKeys(mStore.items(), kGlobalKeys, observer),
      mCustomerDdcci(mStore.items(), kCustomerDdcci, observer),
      mRegion(mStore.items(), mPartitions, properties, data) {
    mRegion.apply(identity.country);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
