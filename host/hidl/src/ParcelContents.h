// The contents of a parcel, and how their memory passes from one parcel to the next.
#pragma once

#include <hwbinder/Parcel.h>

#include <memory>
#include <vector>

#include "Wire.h"

namespace android::hardware {

struct Parcel::Contents {
    Contents();

    std::vector<uint8_t> data;    // numbers that were written
    std::vector<Object> objects;  // written or arrived
    bool arrived = false;
    transport::IncomingMessage message;  // what arrived; owns all its bytes

    /**
     * Returns empty contents for a new parcel, reusing those of a parcel that was destroyed on this
     * thread if possible.
     */
    static std::unique_ptr<Contents> take();
    /**
     * Empties the contents and keeps them for the next take() on this thread, unless they are large
     * or enough are kept already.
     */
    static void give(std::unique_ptr<Contents> contents);
};

}  // namespace android::hardware
