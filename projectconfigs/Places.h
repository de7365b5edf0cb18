#pragma once

#include <mutex>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** As many places as threads may do something at once. For any number of threads. */
class Places {
  public:
    explicit Places(int count) : mFree(count) {}

    /** A place if one was free; it is given back with the object. Nobody waits for a place. */
    class Taken {
      public:
        explicit Taken(Places& places) : mPlaces(places) {
            const std::lock_guard<std::mutex> lock(places.mMutex);
            mHas = places.mFree > 0;
            places.mFree -= mHas ? 1 : 0;
        }
        ~Taken() {
            if (mHas) {
                const std::lock_guard<std::mutex> lock(mPlaces.mMutex);
                ++mPlaces.mFree;
            }
        }
        Taken(const Taken&) = delete;
        Taken& operator=(const Taken&) = delete;

        explicit operator bool() const { return mHas; }

      private:
        Places& mPlaces;
        bool mHas = false;
    };

  private:
    std::mutex mMutex;
    int mFree;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
