#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** Limits how many threads do something at the same time. For any number of threads. */
class Places {
  public:
    explicit Places(int count) : mFree(count) {}

    /** A place, or none if all are taken. It is given back with the object. */
    class Taken {
      public:
        /** Takes a place; waits for one at most for `patience`. */
        explicit Taken(Places& places,
                       std::chrono::milliseconds patience = std::chrono::milliseconds::zero())
            : mPlaces(places) {
            std::unique_lock<std::mutex> lock(places.mMutex);
            mHas = places.mFreed.wait_for(lock, patience, [&] { return places.mFree > 0; });
            places.mFree -= mHas ? 1 : 0;
        }
        ~Taken() {
            if (mHas) {
                const std::lock_guard<std::mutex> lock(mPlaces.mMutex);
                ++mPlaces.mFree;
                mPlaces.mFreed.notify_one();
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
    std::condition_variable mFreed;
    int mFree;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
