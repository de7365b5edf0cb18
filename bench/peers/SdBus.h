// Shared by the server and the clients of sd-bus.
#pragma once

#include <systemd/sd-bus.h>

#include <cstring>
#include <stdexcept>

#include "bench/peers/Getter.h"

namespace mlk::bench {

constexpr const char* kPeerSocket = "sd-bus";
constexpr const char* kBusSocket = "bus";
constexpr const char* kBusReady = "bus-ready";
constexpr const char* kBusName = "bench.Getter";
constexpr const char* kBusPath = "/getter";
constexpr const char* kBusInterface = "bench.Getter";

/** Throws std::runtime_error for a negative result of sd-bus. */
inline void check(int result) {
    if (result < 0) {
        throw std::runtime_error(std::string("sd-bus: ") + strerror(-result));
    }
}

/** Connects directly to the server. */
inline sd_bus* connectToPeer() {
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus));
    check(sd_bus_set_address(bus, ("unix:path=" + inRuntimeFolder(kPeerSocket)).c_str()));
    check(sd_bus_start(bus));
    return bus;
}

/** Connects to the bus daemon. */
inline sd_bus* connectToBus() {
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus));
    check(sd_bus_set_address(bus, ("unix:path=" + inRuntimeFolder(kBusSocket)).c_str()));
    check(sd_bus_set_bus_client(bus, 1));
    check(sd_bus_start(bus));
    return bus;
}

}  // namespace mlk::bench
