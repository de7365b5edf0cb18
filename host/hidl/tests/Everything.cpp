#include "Everything.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

#include "Native.h"

namespace mlk::test {

using ::android::hardware::Void;

std::atomic<int> Listener::sAlive{0};

Return<int32_t> Listener::heard(const hidl_string& text) {
    std::lock_guard<std::mutex> lock(mMutex);
    mTexts.push_back(text);
    return static_cast<int32_t>(mTexts.size());
}
Return<void> Listener::tell(int32_t n) {
    std::lock_guard<std::mutex> lock(mMutex);
    mTexts.push_back(std::to_string(n));
    return Void();
}
Return<void> Listener::all(all_cb answer) {
    const std::vector<std::string> heard = texts();
    answer(hidl_vec<hidl_string>(heard.begin(), heard.end()));
    return Void();
}
std::vector<std::string> Listener::texts() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mTexts;
}

Return<void> Everything::scalars(bool a, int8_t b, uint8_t c, int16_t d, uint16_t e, int32_t f,
                                 uint32_t g, int64_t h, uint64_t i, float j, double k,
                                 scalars_cb answer) {
    answer(a, b, c, d, e, f, g, h, i, j, k);
    return Void();
}
Return<void> Everything::colour(Colour c, hidl_bitfield<Colour> m, colour_cb answer) {
    answer(c, m);
    return Void();
}
Return<void> Everything::text(const hidl_string& s, text_cb answer) {
    answer(s);
    return Void();
}
Return<uint32_t> Everything::length(const hidl_string& s) {
    return static_cast<uint32_t>(s.size());
}
Return<void> Everything::fd(const hidl_handle& h, fd_cb answer) {
    answer(h);
    return Void();
}
Return<int32_t> Everything::sign(const hidl_handle& h, const hidl_string& s) {
    if (h.getNativeHandle() == nullptr) {
        return -1;
    }
    ssize_t written = 0;
    for (int i = 0; i < h->numFds; ++i) {
        const ssize_t part = write((&h->data[0])[i], s.c_str(), s.size());
        if (part > 0) {
            written += part;
        }
    }
    return static_cast<int32_t>(written);
}
Return<void> Everything::shared(const hidl_memory& m, shared_cb answer) {
    answer(m);
    return Void();
}
Return<void> Everything::matrix(const hidl_array<int16_t, 2, 3>& m, matrix_cb answer) {
    hidl_array<int16_t, 3, 2> turned;
    for (size_t row = 0; row < 2; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            turned[column][row] = m[row][column];
        }
    }
    answer(turned);
    return Void();
}
Return<void> Everything::names(const hidl_array<hidl_string, 2>& m, names_cb answer) {
    hidl_array<hidl_string, 2> turned;
    turned[0] = m[1];
    turned[1] = m[0];
    answer(turned);
    return Void();
}
Return<void> Everything::nested(const hidl_vec<hidl_vec<hidl_string>>& v, nested_cb answer) {
    answer(v);
    return Void();
}
Return<void> Everything::record(const Record& r, record_cb answer) {
    answer(r);
    return Void();
}
Return<void> Everything::records(const hidl_vec<Record>& r, records_cb answer) {
    hidl_vec<Record> turned(r.size());
    for (size_t i = 0; i < r.size(); ++i) {
        turned[i] = r[r.size() - 1 - i];
    }
    answer(turned);
    return Void();
}
Return<void> Everything::choice(const Choice& c, choice_cb answer) {
    answer(c);
    return Void();
}
Return<void> Everything::handles(const hidl_vec<hidl_handle>& c, handles_cb answer) {
    hidl_vec<hidl_handle> turned(c.size());
    for (size_t i = 0; i < c.size(); ++i) {
        turned[i] = c[c.size() - 1 - i];
    }
    answer(turned);
    return Void();
}

sp<IListener> Everything::kept() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mKept;
}
Return<sp<IListener>> Everything::listen(const sp<IListener>& l, const hidl_string& s) {
    if (l == nullptr) {
        return sp<IListener>();
    }
    if (!l->heard(s).isOk()) {
        return sp<IListener>();
    }
    sp<IListener> former;  // destroyed without the lock
    std::lock_guard<std::mutex> lock(mMutex);
    former = mKept;
    mKept = l;
    return sp<IListener>(new Listener);
}
Return<int32_t> Everything::callKept(const hidl_string& s) {
    const sp<IListener> listener = kept();
    return listener == nullptr ? -2 : listener->heard(s).withDefault(-1);
}
Return<bool> Everything::tellKept(int32_t n) {
    const sp<IListener> listener = kept();
    return listener != nullptr && listener->tell(n).isOk();
}
Return<void> Everything::dropKept() {
    sp<IListener> former;
    std::lock_guard<std::mutex> lock(mMutex);
    former = mKept;
    mKept = nullptr;
    return Void();
}
Return<void> Everything::listeners(const hidl_vec<sp<IListener>>& l, listeners_cb answer) {
    hidl_vec<sp<IListener>> ours(l.size());
    for (size_t i = 0; i < l.size(); ++i) {
        if (l[i] == nullptr) {
            continue;
        }
        if (l[i]->heard("one of several").isOk()) {
            ours[i] = new Listener;
        }
    }
    answer(ours);
    return Void();
}
Return<sp<IListener>> Everything::passOn(const sp<IListener>& l) {
    return l;
}
Return<int32_t> Everything::alive() {
    return Listener::alive();
}

Return<void> Everything::poke(int32_t n) {
    std::lock_guard<std::mutex> lock(mMutex);
    mPoked.push_back(n);
    return Void();
}
Return<void> Everything::poked(poked_cb answer) {
    std::vector<int32_t> all;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        all.swap(mPoked);
    }
    answer(all);
    return Void();
}
Return<void> Everything::bytes(uint32_t n, bytes_cb answer) {
    hidl_vec<uint8_t> made(n);
    for (uint32_t i = 0; i < std::min<uint32_t>(n, 256); ++i) {
        made[i] = static_cast<uint8_t>(i);
    }
    // Copies the pattern for the rest, so that large answers cost the test little.
    for (size_t filled = 256; filled < n; filled *= 2) {
        memcpy(&made[filled], &made[0], std::min<size_t>(filled, n - filled));
    }
    answer(made);
    return Void();
}
Return<void> Everything::hold(const hidl_handle& gate) {
    if (gate.getNativeHandle() == nullptr || gate->numFds != 2) {
        return Void();
    }
    const int* ends = &gate->data[0];
    if (write(ends[0], "!", 1) == 1) {
        (void)readFrom(ends[1], 1);
    }
    return Void();
}
Return<void> Everything::silent(silent_cb) {
    return Void();
}
Return<void> Everything::twice(twice_cb answer) {
    answer("first");
    answer("second");
    return Void();
}
Return<void> Everything::brokenHandle(brokenHandle_cb answer) {
    native_handle_t* native = native_handle_create(1, 0);
    native->data[0] = -1;
    answer(native);
    (void)native_handle_delete(native);
    return Void();
}
Return<void> Everything::fails(bool noMemory, fails_cb) {
    if (noMemory) {
        throw std::bad_alloc();
    }
    throw std::runtime_error("on request");
}
Return<void> Everything::debug(const hidl_handle& fd, const hidl_vec<hidl_string>& options) {
    for (const hidl_string& option : options) {
        (void)sign(fd, std::string(option) + "\n").isOk();
    }
    return Void();
}

}  // namespace mlk::test
