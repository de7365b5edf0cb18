// Sends a parcel through a socket within one process.
#pragma once

#include <hwbinder/Parcel.h>

namespace mlk::test {

/**
 * Sends the parcel like a call and stores what arrives in the other one. Returns the status of the
 * first step that fails.
 */
::android::status_t travel(const ::android::hardware::Parcel& sent,
                           ::android::hardware::Parcel* arrived);

}  // namespace mlk::test
