#pragma once

#include <cstddef>
#include <functional>

namespace android::hardware::details {

/**
 * The queue of one-way calls in a passthrough wrapper. Generated code defines such wrappers, but
 * nothing creates one on a host. So the queue takes no task.
 */
class TaskRunner {
  public:
    void start(size_t /* limit */) {}
    bool push(const std::function<void()>&) { return false; }
};

}  // namespace android::hardware::details
