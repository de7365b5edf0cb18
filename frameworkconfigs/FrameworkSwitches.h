#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <mutex>

#include "common/Properties.h"
#include "frameworkconfigs/FrameworkItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The debugging and behaviour switches of one set: of its media framework and its TV middleware.
 *
 * The constructor reads all properties. A property that another program changes later is not seen.
 * Knows no service and no process: a program may have the switches of any number of sets side by
 * side.
 *
 * Calls may come from any number of threads. Getters take no lock; setters run one after the other,
 * so that a cached value is what the property holds.
 */
class FrameworkSwitches {
  public:
    /**
     * Reads every property of FrameworkItems.h, in its order.
     *
     * @param properties  the set's system properties; must outlive the object
     */
    explicit FrameworkSwitches(Properties& properties);
    FrameworkSwitches(const FrameworkSwitches&) = delete;
    FrameworkSwitches& operator=(const FrameworkSwitches&) = delete;

    /** The value of the row of kFrameworkItems: of a flag 0 or 1, of a text 0. */
    int32_t get(size_t row) const { return mCache[row]; }

    /**
     * Writes the flag inverted, as the property stores it: "0" for true and "1" for false.
     *
     * @return what the property holds afterwards, whether or not it could be written
     */
    bool setForceStr(bool enabled);

    /**
     * Writes "true" or "false". The TV features have the same property in a cache of their own,
     * which does not change.
     *
     * @return what the property holds afterwards, or `enabled` if that is no flag
     */
    bool setWow(bool enabled);

  private:
    bool write(size_t row, const char* text, bool requested);

    Properties& mProperties;
    std::array<std::atomic<int32_t>, std::size(kFrameworkItems)> mCache{};  // by row
    std::mutex mSetterLock;  // held from a property's write until its value is cached
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
