// Calls of every method of the tests' interface, for fuzzers.
#pragma once

#include <functional>
#include <vector>

#include "host/hidl/tests/Everything.h"

namespace mlk::test {

/** One call for each method, with default arguments; it reads every byte of its answer. */
const std::vector<std::function<void(IEverything&)>>& calls();

/**
 * Answers every call at once, with little data and without keeping state. Leaves out the
 * misbehaviour of Everything that generated stubs do not survive.
 */
class TameEverything : public Everything {
  public:
    Return<int32_t> alive() override { return 0; }
    Return<void> bytes(uint32_t n, bytes_cb answer) override;
    Return<void> hold(const hidl_handle&) override { return {}; }
    Return<sp<IListener>> listen(const sp<IListener>& l, const hidl_string& s) override;
    Return<void> poke(int32_t) override { return {}; }
    Return<void> silent(silent_cb answer) override;
    Return<void> twice(twice_cb answer) override;
};

}  // namespace mlk::test
