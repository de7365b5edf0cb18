#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** Limits how many threads do something at the same time. Any number of threads may use it. */
class Places {
  public:
    explicit Places(int count) : mFree(count) {}

    /** One place, or none if all are taken. The destructor gives it back. */
    class Taken {
      public:
        /** Takes a place; waits at most `patience` for a free one. */
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
