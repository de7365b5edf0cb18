#pragma once

#include <cstddef>
#include <functional>

namespace mlk::tree {

/**
 * Calls work(0) to work(count - 1), each once, on all cores. Returns when all are done.
 *
 * @throw what a call throws; the first of several. Calls that have not begun by then are left out.
 */
void forEachInParallel(size_t count, const std::function<void(size_t)>& work);

}  // namespace mlk::tree
