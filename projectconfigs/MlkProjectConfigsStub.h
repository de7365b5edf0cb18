#pragma once

#include <vendor/morlak/mlkconfigs/1.0/BnHwMlkProjectConfigs.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The stub through which clients reach MlkProjectConfigs.
 *
 * Some methods of the class do not answer where an argument is out of range. The generated stub
 * ends the process then, as the class itself does for a text of an AVR that does not fit, and a
 * client must not be able to do that. For these methods this one refuses the call instead: the
 * client's Return is not OK (EX_TRANSACTION_FAILED, BAD_VALUE), an error line names method and
 * arguments, and the service lives on. An answered call travels exactly as it does through the
 * generated stub, which also serves all other methods.
 *
 * Made by the runtime, one for a registered object, which has to be a MlkProjectConfigs; called
 * from every RPC thread, keeps no state and takes no lock. Log tag: "MlkProjectConfigs".
 */
class MlkProjectConfigsStub : public BnHwMlkProjectConfigs {
  public:
    using BnHwMlkProjectConfigs::BnHwMlkProjectConfigs;

    ::android::status_t onTransact(uint32_t code, const ::android::hardware::Parcel& data,
                                   ::android::hardware::Parcel* reply, uint32_t flags,
                                   TransactCallback callback) override;
};

/**
 * Makes the runtime give clients of IMlkProjectConfigs this stub. To be called before an object of
 * that interface is registered; every one that is registered has to be a MlkProjectConfigs.
 */
void installMlkProjectConfigsStub();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
