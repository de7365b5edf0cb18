#include "tools/mlktree/Parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace mlk::tree {

void forEachInParallel(size_t count, const std::function<void(size_t)>& work) {
    std::atomic<size_t> next{0};
    std::mutex mutex;
    std::exception_ptr failure;
    const auto run = [&] {
        try {
            for (size_t i = next++; i < count; i = next++) {
                work(i);
            }
        } catch (...) {
            next = count;
            const std::lock_guard<std::mutex> lock(mutex);
            failure = failure ? failure : std::current_exception();
        }
    };
    const size_t cores = std::max<size_t>(std::thread::hardware_concurrency(), 1);
    std::vector<std::thread> threads;
    try {
        while (threads.size() + 1 < std::min(cores, count)) {
            threads.emplace_back(run);
        }
    } catch (const std::system_error&) {
        // Fewer threads do the same work.
    }
    run();
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

}  // namespace mlk::tree
