// What planted bugs ask whether it is their turn. Only the copy of the tree that ./test --mutants
// builds includes it.
#pragma once

#include <stdlib.h>

namespace mlk_mutants {

/**
 * Whether the bug of that number acts: the environment variable MLK_MUTANT names it, also to
 * programs that a test starts. From any thread, before and after main as well.
 */
inline bool acts(int number) {
    static const int kChosen = [] {
        const char* text = getenv("MLK_MUTANT");
        return text == nullptr ? 0 : atoi(text);
    }();
    return number == kChosen;
}

/** A lock that a planted bug does not take. */
template <typename Mutex, bool kShared>
class MaybeLock {
  public:
    MaybeLock(Mutex& mutex, bool take) : mMutex(take ? &mutex : nullptr) {
        if (mMutex == nullptr) {
            return;
        }
        if constexpr (kShared) {
            mMutex->lock_shared();
        } else {
            mMutex->lock();
        }
    }
    ~MaybeLock() {
        if (mMutex == nullptr) {
            return;
        }
        if constexpr (kShared) {
            mMutex->unlock_shared();
        } else {
            mMutex->unlock();
        }
    }
    MaybeLock(const MaybeLock&) = delete;
    MaybeLock& operator=(const MaybeLock&) = delete;

  private:
    Mutex* const mMutex;
};

}  // namespace mlk_mutants
