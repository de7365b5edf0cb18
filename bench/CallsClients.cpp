// Measures several client processes at the same time.

#include <android-base/unique_fd.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <deque>
#include <stdexcept>
#include <thread>

#include "bench/Calls.h"
#include "bench/Started.h"

namespace mlk::bench {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr size_t kMostClients = 64;
constexpr int kWarmUpCalls = 200;

// Memory shared by the clients and the process that measures them. Each counter has its own cache
// line.
struct Shared {
    struct alignas(64) Counter {
        std::atomic<uint64_t> calls;
    };
    std::array<Counter, kMostClients> counters;
    std::atomic<size_t> ready;
};

Shared* mapShared(int memory) {
    void* const shared =
            mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    if (shared == MAP_FAILED) {
        throw std::runtime_error("no shared memory");
    }
    return static_cast<Shared*>(shared);
}

uint64_t callsOf(const Shared& shared) {
    uint64_t sum = 0;
    for (const auto& counter : shared.counters) {
        sum += counter.calls.load(std::memory_order_relaxed);
    }
    return sum;
}

}  // namespace

double callsPerSecond(const CallContestant& contestant, const Payload& payload, size_t clients,
                      int duration) {
    if (clients > kMostClients) {
        throw std::runtime_error("too many clients");
    }
    const android::base::unique_fd memory(memfd_create("calls", 0));
    if (ftruncate(memory.get(), sizeof(Shared)) != 0) {
        throw std::runtime_error("no shared memory");
    }
    Shared* const shared = mapShared(memory.get());
    std::deque<Child> children;
    for (size_t i = 0; i < clients; ++i) {
        children.emplace_back(std::vector<std::string>{
                "/proc/self/exe", "client", contestant.name, std::to_string(payload.request),
                std::to_string(payload.reply), std::to_string(memory.get()), std::to_string(i)});
    }
    const auto patience = steady_clock::now() + std::chrono::seconds(30);
    while (shared->ready < clients) {
        if (steady_clock::now() > patience) {
            throw std::runtime_error("clients do not connect");
        }
        std::this_thread::sleep_for(milliseconds(1));
    }
    const auto begin = steady_clock::now();
    const uint64_t callsAtBegin = callsOf(*shared);
    std::this_thread::sleep_for(milliseconds(duration));
    const uint64_t calls = callsOf(*shared) - callsAtBegin;
    const std::chrono::duration<double> seconds = steady_clock::now() - begin;
    children.clear();
    (void)munmap(shared, sizeof(Shared));
    return static_cast<double>(calls) / seconds.count();
}

int runClient(const CallContestant& contestant, const Payload& payload, int sharedMemory,
              size_t index) {
    Shared* const shared = mapShared(sharedMemory);
    const std::unique_ptr<Caller> caller = contestant.connect(payload);
    for (int i = 0; i < kWarmUpCalls; ++i) {
        caller->call();
    }
    ++shared->ready;
    std::atomic<uint64_t>& calls = shared->counters.at(index).calls;
    // Runs until the process is killed.
    for (uint64_t count = 1;; ++count) {
        caller->call();
        calls.store(count, std::memory_order_relaxed);
    }
}

}  // namespace mlk::bench
