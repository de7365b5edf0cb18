#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace android::hardware {

namespace details {

/** std::array<std::array<T, 3>, 2> for (T, 2, 3). */
template <typename T, size_t First, size_t... Rest>
struct nested_array {
    using type = std::array<typename nested_array<T, Rest...>::type, First>;
};
template <typename T, size_t Only>
struct nested_array<T, Only> {
    using type = std::array<T, Only>;
};

/** One row of an array. Indexing it gives a row of one dimension less, finally an element. */
template <typename T, size_t First, size_t... Rest>
class array_row {
  public:
    explicit array_row(T* elements) : mElements(elements) {}
    array_row<T, Rest...> operator[](size_t index) const {
        return array_row<T, Rest...>(mElements + index * (Rest * ...));
    }

  private:
    T* mElements;
};
template <typename T, size_t Only>
class array_row<T, Only> {
  public:
    explicit array_row(T* elements) : mElements(elements) {}
    T& operator[](size_t index) const { return mElements[index]; }

  private:
    T* mElements;
};

}  // namespace details

/**
 * A fixed array of one or more dimensions. Its elements lie in row order without gaps. Indices are
 * not checked.
 */
template <typename T, size_t First, size_t... Rest>
struct hidl_array {
    using std_array_type = typename details::nested_array<T, First, Rest...>::type;

    /** Elements that are zero or default-constructed. */
    hidl_array() = default;
    /** Copies elementCount() elements in row order. */
    hidl_array(const T* source) { std::copy(source, source + elementCount(), data()); }
    hidl_array(const std_array_type& source)
        : hidl_array(reinterpret_cast<const T*>(source.data())) {}

    hidl_array& operator=(const T* source) {
        std::copy(source, source + elementCount(), data());
        return *this;
    }
    operator std_array_type() const {
        std_array_type copy;
        std::copy(data(), data() + elementCount(), reinterpret_cast<T*>(copy.data()));
        return copy;
    }

    /** All elements in row order. */
    T* data() { return mBuffer.data(); }
    const T* data() const { return mBuffer.data(); }
    /** An element, or a row of one dimension less. */
    decltype(auto) operator[](size_t index) {
        return details::array_row<T, First, Rest...>(data())[index];
    }
    decltype(auto) operator[](size_t index) const {
        return details::array_row<const T, First, Rest...>(data())[index];
    }

    static constexpr size_t elementCount() { return (First * ... * Rest); }
    /** The length of a one-dimensional array. */
    static constexpr size_t size() { return First; }

    bool operator==(const hidl_array& other) const { return mBuffer == other.mBuffer; }
    bool operator!=(const hidl_array& other) const { return !(*this == other); }

  private:
    std::array<T, elementCount()> mBuffer{};
};

}  // namespace android::hardware
