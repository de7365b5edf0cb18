#pragma once

#include <hidl/HidlInternal.h>
#include <hidl/HostTransport.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace android::hardware {

/**
 * A vector of fixed size; only resize changes it. Owns its elements unless setToExternal says
 * otherwise. It has at most 2^32-1 elements; more are fatal. Not thread-safe.
 */
template <typename T>
class hidl_vec {
  public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    /** No elements. */
    hidl_vec() : mBuffer(nullptr), mSize(0), mOwnsBuffer(false), mPad{} {}
    /** `size` value-initialised elements. */
    explicit hidl_vec(size_t size) : hidl_vec() { resize(size); }
    /** Copies the elements. */
    hidl_vec(std::initializer_list<T> list) : hidl_vec(list.begin(), list.end()) {}
    hidl_vec(const std::vector<T>& other) : hidl_vec(other.begin(), other.end()) {}
    template <typename Iterator,
              typename = typename std::iterator_traits<Iterator>::iterator_category>
    hidl_vec(Iterator first, Iterator last) : hidl_vec() {
        allocate(static_cast<size_t>(std::distance(first, last)));
        std::copy(first, last, begin());
    }
    hidl_vec(const hidl_vec& other) : hidl_vec(other.begin(), other.end()) {}
    /** Takes the elements over; the other vector becomes empty. */
    hidl_vec(hidl_vec&& other) noexcept : hidl_vec() { swap(other); }
    ~hidl_vec() { release(); }

    hidl_vec& operator=(const hidl_vec& other) {
        if (this != &other) {
            hidl_vec(other).swap(*this);
        }
        return *this;
    }
    hidl_vec& operator=(hidl_vec&& other) noexcept {
        if (this != &other) {
            hidl_vec taken(std::move(other));
            swap(taken);
        }
        return *this;
    }
    hidl_vec& operator=(const std::vector<T>& other) {
        hidl_vec(other).swap(*this);
        return *this;
    }
    hidl_vec& operator=(std::initializer_list<T> list) {
        hidl_vec(list).swap(*this);
        return *this;
    }

    /** A copy. */
    operator std::vector<T>() const { return {begin(), end()}; }

    size_t size() const { return mSize; }
    /** The first element; null when the vector is empty. */
    T* data() { return mBuffer; }
    const T* data() const { return mBuffer; }
    /** The index must be less than size(). */
    T& operator[](size_t index) { return data()[index]; }
    const T& operator[](size_t index) const { return data()[index]; }
    T* begin() { return data(); }
    T* end() { return data() + mSize; }
    const T* begin() const { return data(); }
    const T* end() const { return data() + mSize; }

    /**
     * Keeps the elements that fit and value-initialises new ones. Throws std::bad_alloc above
     * kMostBytes: generated code resizes to a count that a message claims, and such a claim must
     * not cost its receiver more than one answer.
     */
    void resize(size_t size) {
        if (size > kMostBytes / sizeof(T)) {
            throw std::bad_alloc();
        }
        hidl_vec grown;
        grown.allocate(size);
        std::move(begin(), begin() + std::min<size_t>(size, mSize), grown.begin());
        swap(grown);
    }

    /**
     * Refers to an external array, which must outlive this object. With shouldOwn, this object
     * frees it with delete[].
     */
    void setToExternal(T* elements, size_t size, bool shouldOwn = false) {
        checkSize(size);
        release();
        mBuffer = elements;
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = shouldOwn;
    }

    /** Offset of the pointer to the elements inside the object, for the transport. */
    static constexpr size_t kOffsetOfBuffer = 0;

    MLK_HOST_TRANSPORT_ONLY
    /** The most bytes that resize() gives the elements: as many as the largest message holds. */
    static constexpr size_t kMostBytes = size_t{256} << 20U;

  private:
    static void checkSize(size_t size) {
        if (size > std::numeric_limits<uint32_t>::max()) {
            details::logAlwaysFatal("a hidl_vec holds at most 2^32-1 elements");
        }
    }
    void allocate(size_t size) {
        checkSize(size);
        mBuffer = size == 0 ? nullptr : new T[size]();
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = size != 0;
    }
    void release() {
        if (mOwnsBuffer) {
            delete[] data();
        }
    }
    void swap(hidl_vec& other) noexcept {
        std::swap(mBuffer, other.mBuffer);
        std::swap(mSize, other.mSize);
        std::swap(mOwnsBuffer, other.mOwnsBuffer);
    }

    details::hidl_pointer<T> mBuffer;
    uint32_t mSize;
    bool mOwnsBuffer;
    [[maybe_unused]] uint8_t mPad[3];  // is sent along, so it must not leak what was in memory
};
static_assert(sizeof(hidl_vec<char>) == 16);

template <typename T>
bool operator==(const hidl_vec<T>& a, const hidl_vec<T>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}
template <typename T>
bool operator!=(const hidl_vec<T>& a, const hidl_vec<T>& b) {
    return !(a == b);
}

}  // namespace android::hardware
