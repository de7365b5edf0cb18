#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace mlk::testing {

/**
 * Calls work(0) to work(count - 1), each on a separate thread; returns when all are done. No thread
 * begins before all have started, because one could finish short work before the next starts.
 */
template <typename Work>
void inThreads(int count, const Work& work) {
    std::vector<std::thread> threads;
    threads.reserve(static_cast<size_t>(count));
    std::atomic<int> missing = count;
    for (int index = 0; index < count; ++index) {
        threads.emplace_back([&work, &missing, index] {
            --missing;
            while (missing > 0) {
                std::this_thread::yield();
            }
            work(index);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace mlk::testing
