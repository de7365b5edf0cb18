#pragma once

#include <vendor/morlak/mlkconfigs/1.0/BnHwMlkProjectConfigs.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The stub through which clients reach MlkProjectConfigs.
 *
 * Some methods of the class give no answer if an argument is out of range. The generated stub ends
 * the process then, and so does the class itself for a text of an AVR that does not fit. A client
 * must not be able to do that. For these methods this stub refuses the call instead: the client's
 * Return is not OK (EX_TRANSACTION_FAILED, BAD_VALUE), an error line names method and arguments,
 * and the service lives on. An answered call has the same bytes as through the generated stub,
 * which serves all other methods.
 *
 * The runtime makes one stub for each registered object, which must be a MlkProjectConfigs. Every
 * RPC thread may call it; it keeps no state and takes no lock. Log tag: "MlkProjectConfigs".
 */
class MlkProjectConfigsStub : public BnHwMlkProjectConfigs {
  public:
    using BnHwMlkProjectConfigs::BnHwMlkProjectConfigs;

    ::android::status_t onTransact(uint32_t code, const ::android::hardware::Parcel& data,
                                   ::android::hardware::Parcel* reply, uint32_t flags,
                                   TransactCallback callback) override;
};

/**
 * Makes the runtime use this stub for IMlkProjectConfigs. Call it before an object of that
 * interface is registered; every registered object must be a MlkProjectConfigs.
 */
void installMlkProjectConfigsStub();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
