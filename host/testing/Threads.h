#pragma once

#include <thread>
#include <vector>

namespace mlk::testing {

/// Calls work(0) to work(count - 1), each on a thread of its own, all at once; returns when all are
/// done.
template <typename Work>
void inThreads(int count, const Work& work) {
    std::vector<std::thread> threads;
    threads.reserve(static_cast<size_t>(count));
    for (int index = 0; index < count; ++index) {
        threads.emplace_back([&work, index] { work(index); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace mlk::testing
