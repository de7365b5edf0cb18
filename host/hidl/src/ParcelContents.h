// What a parcel consists of, and how its memory goes from one parcel to the next.
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

    // Empty ones for a new parcel: those of a parcel that ended on this thread, if there are any.
    static std::unique_ptr<Contents> take();
    // Empties them, and keeps them for the next take() on this thread unless they are large or
    // there are enough.
    static void give(std::unique_ptr<Contents> contents);
};

}  // namespace android::hardware
