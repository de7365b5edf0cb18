#pragma once

#include <hidl/HostTransport.h>

#include <map>
#include <mutex>
#include <utility>

namespace android::hardware {

/** A process-wide table of the runtime: a map whose every operation is atomic. */
template <typename K, typename V>
class ConcurrentMap {
  public:
    /** Sets the value of the key, replacing a former one. */
    void set(K key, V value) {
        std::lock_guard<std::mutex> lock(mMutex);
        mMap.insert_or_assign(std::move(key), std::move(value));
    }
    /** Returns the value of the key, or the fallback when the key is absent. */
    V get(const K& key, const V& fallback) const {
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mMap.find(key);
        return it == mMap.end() ? fallback : it->second;
    }
    /** Returns the number of erased entries: 0 or 1. */
    size_t erase(const K& key) {
        std::lock_guard<std::mutex> lock(mMutex);
        return mMap.erase(key);
    }
    /**
     * Erases the entry when its value equals the given one. Returns the number of erased entries.
     */
    size_t eraseIfEqual(const K& key, const V& value) {
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mMap.find(key);
        if (it == mMap.end() || !(it->second == value)) {
            return 0;
        }
        mMap.erase(it);
        return 1;
    }

    MLK_HOST_TRANSPORT_ONLY
    /**
     * Returns what usable() makes of the key's value. When the key is absent or usable() returns
     * null, stores and returns what make() returns. make() runs without the lock, so it may use the
     * map. When two threads make a value at once, both get the one that is kept.
     */
    template <typename Make, typename Use>
    auto getOrMake(const K& key, Use usable, Make make) -> decltype(make()) {
        if (auto found = use(key, usable)) {
            return found;
        }
        auto made = make();
        if (!made) {
            return made;
        }
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mMap.find(key);
        if (it != mMap.end()) {
            if (auto found = usable(it->second)) {
                return found;
            }
        }
        mMap.insert_or_assign(key, V(made));
        return made;
    }

  private:
    template <typename Use>
    auto use(const K& key, Use usable) const -> decltype(usable(std::declval<const V&>())) {
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mMap.find(key);
        if (it == mMap.end()) {
            return {};
        }
        return usable(it->second);
    }

    mutable std::mutex mMutex;
    std::map<K, V> mMap;
};

}  // namespace android::hardware
