// A parcel's way through a socket, in one process.
#pragma once

#include <hwbinder/Parcel.h>

namespace mlk::test {

// Sends the parcel as a call would be and puts what arrives into the other one. The status of the
// first step that fails.
::android::status_t travel(const ::android::hardware::Parcel& sent,
                           ::android::hardware::Parcel* arrived);

}  // namespace mlk::test
