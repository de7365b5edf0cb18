#include "common/TextHash.h"

#include <unistd.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

uint64_t gHashStart = 0;

namespace {

// Runs before the constructors of static objects: their tables must not see the number change.
[[gnu::constructor(101)]] void chooseHashStart() {
    uint64_t random = 0;
    if (getentropy(&random, sizeof random) == 0) {
        gHashStart = random;
    }
}

}  // namespace

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
