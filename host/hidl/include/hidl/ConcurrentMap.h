// ConcurrentMap: the runtime's process-wide tables.
#pragma once

#include <hidl/HostTransport.h>

#include <map>
#include <mutex>
#include <utility>

namespace android::hardware {

// A map whose every operation is atomic.
template <typename K, typename V>
class ConcurrentMap {
  public:
    // Puts the value in place of a former one.
    void set(K key, V value) {
        std::lock_guard<std::mutex> lock(mMutex);
        mMap.insert_or_assign(std::move(key), std::move(value));
    }
    // The value, or the given one when the key is absent.
    V get(const K& key, const V& fallback) const {
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mMap.find(key);
        return it == mMap.end() ? fallback : it->second;
    }
    // How many entries went: 0 or 1.
    size_t erase(const K& key) {
        std::lock_guard<std::mutex> lock(mMutex);
        return mMap.erase(key);
    }
    // Erases the entry when its value equals the given one.
    size_t eraseIfEqual(const K& key, const V& value) {
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mMap.find(key);
        if (it == mMap.end() || !(it->second == value)) return 0;
        mMap.erase(it);
        return 1;
    }

    MLK_HOST_TRANSPORT_ONLY
    // The value of the key as usable() gives it, or what make() makes and this keeps when there is
    // none or usable() gives nothing. make() runs without the lock, so it may use the map; of what
    // two threads make at once one is kept, and both have it.
    template <typename Make, typename Use>
    auto getOrMake(const K& key, Use usable, Make make) -> decltype(make()) {
        if (auto found = use(key, usable)) return found;
        auto made = make();
        if (!made) return made;
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mMap.find(key);
        if (it != mMap.end()) {
            if (auto found = usable(it->second)) return found;
        }
        mMap.insert_or_assign(key, V(made));
        return made;
    }

  private:
    template <typename Use>
    auto use(const K& key, Use usable) const -> decltype(usable(std::declval<const V&>())) {
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mMap.find(key);
        if (it == mMap.end()) return {};
        return usable(it->second);
    }

    mutable std::mutex mMutex;
    std::map<K, V> mMap;
};

}  // namespace android::hardware
