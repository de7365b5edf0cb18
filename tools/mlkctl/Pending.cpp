#include "tools/mlkctl/Pending.h"

namespace mlk::ctl {

std::atomic<int>& details::pendingThreads() {
    static std::atomic<int> count{0};
    return count;
}

bool anyPending() {
    return details::pendingThreads() != 0;
}

}  // namespace mlk::ctl
