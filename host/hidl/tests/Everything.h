#pragma once

#include <mlk/test/everything/1.0/IEverything.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace mlk::test {

using ::android::sp;
using ::android::hardware::hidl_array;
using ::android::hardware::hidl_bitfield;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::mlk::test::everything::V1_0::Choice;
using ::mlk::test::everything::V1_0::Colour;
using ::mlk::test::everything::V1_0::IEverything;
using ::mlk::test::everything::V1_0::IListener;
using ::mlk::test::everything::V1_0::Point;
using ::mlk::test::everything::V1_0::Record;

/** Remembers what it hears. Thread-safe. */
class Listener : public IListener {
  public:
    Listener() { ++sAlive; }
    ~Listener() override { --sAlive; }

    Return<int32_t> heard(const hidl_string& text) override;
    Return<void> tell(int32_t n) override;
    Return<void> all(all_cb answer) override;

    std::vector<std::string> texts() const;
    /** The number of listeners that live in this process. */
    static int alive() { return sAlive; }

  private:
    static std::atomic<int> sAlive;
    mutable std::mutex mMutex;
    std::vector<std::string> mTexts;  // under mMutex
};

/** Implements the interface of the tests as its comments say. Thread-safe. */
class Everything : public IEverything {
  public:
    Return<void> scalars(bool a, int8_t b, uint8_t c, int16_t d, uint16_t e, int32_t f, uint32_t g,
                         int64_t h, uint64_t i, float j, double k, scalars_cb answer) override;
    Return<void> colour(Colour c, hidl_bitfield<Colour> m, colour_cb answer) override;
    Return<void> text(const hidl_string& s, text_cb answer) override;
    Return<uint32_t> length(const hidl_string& s) override;
    Return<void> fd(const hidl_handle& h, fd_cb answer) override;
    Return<int32_t> sign(const hidl_handle& h, const hidl_string& s) override;
    Return<void> shared(const hidl_memory& m, shared_cb answer) override;
    Return<void> matrix(const hidl_array<int16_t, 2, 3>& m, matrix_cb answer) override;
    Return<void> names(const hidl_array<hidl_string, 2>& m, names_cb answer) override;
    Return<void> nested(const hidl_vec<hidl_vec<hidl_string>>& v, nested_cb answer) override;
    Return<void> record(const Record& r, record_cb answer) override;
    Return<void> records(const hidl_vec<Record>& r, records_cb answer) override;
    Return<void> choice(const Choice& c, choice_cb answer) override;
    Return<void> handles(const hidl_vec<hidl_handle>& c, handles_cb answer) override;
    Return<sp<IListener>> listen(const sp<IListener>& l, const hidl_string& s) override;
    Return<int32_t> callKept(const hidl_string& s) override;
    Return<bool> tellKept(int32_t n) override;
    Return<void> dropKept() override;
    Return<void> listeners(const hidl_vec<sp<IListener>>& l, listeners_cb answer) override;
    Return<sp<IListener>> passOn(const sp<IListener>& l) override;
    Return<int32_t> alive() override;
    Return<void> poke(int32_t n) override;
    Return<void> poked(poked_cb answer) override;
    Return<void> bytes(uint32_t n, bytes_cb answer) override;
    Return<void> hold(const hidl_handle& gate) override;
    Return<void> silent(silent_cb answer) override;
    Return<void> twice(twice_cb answer) override;
    Return<void> brokenHandle(brokenHandle_cb answer) override;
    Return<void> fails(bool noMemory, fails_cb answer) override;

    /** Writes its options to the descriptor, one a line. */
    Return<void> debug(const hidl_handle& fd, const hidl_vec<hidl_string>& options) override;

  private:
    sp<IListener> kept() const;

    mutable std::mutex mMutex;
    sp<IListener> mKept;          // under mMutex
    std::vector<int32_t> mPoked;  // under mMutex
};

}  // namespace mlk::test
