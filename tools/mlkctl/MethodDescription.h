#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/**
 * What the interfaces' definitions say about a method, as constants: the table is generated from
 * service/interfaces/mlkconfigs/1.0, whose comments are its only source.
 */
namespace mlk::ctl {

/** A constant array of any length; refers to it. */
template <typename T>
class List {
  public:
    constexpr List() = default;
    template <size_t kSize>
    constexpr List(const T (&rows)[kSize]) : mFirst(rows), mSize(kSize) {}

    constexpr const T* begin() const { return mFirst; }
    constexpr const T* end() const { return mFirst + mSize; }
    constexpr size_t size() const { return mSize; }
    constexpr bool empty() const { return mSize == 0; }
    constexpr const T& operator[](size_t index) const { return mFirst[index]; }

  private:
    const T* mFirst = nullptr;
    size_t mSize = 0;
};

/** A number of an enumeration and its name. */
struct Enumerator {
    std::string_view name;
    int64_t value;
};

/** An argument as the interface declares it. */
struct ArgumentDescription {
    std::string_view name;  // "cableType"
    std::string_view type;  // "AtscCableType"
    /** Which values the method serves: "0 to 3", "at most 128 bytes", "a country"; empty for every
     * value of the type. */
    std::string_view range;
    std::optional<int64_t> low;   // The lowest number of the range, if it has one.
    std::optional<int64_t> high;  // The highest number of the range, or a text's most bytes.
    std::string_view text;        // What the argument is: "which port".
    List<Enumerator> enumerators;
};

/** Items of one section of the project's files. */
struct ItemDescription {
    std::string_view section;     // With its brackets.
    List<std::string_view> keys;  // One, or those that an argument chooses from, in order.
};

/** A method as the interface declares it. */
struct MethodDescription {
    uint32_t code;  // The transaction code: the method's position in its interface, from 1.
    std::string_view name;
    std::string_view summary;  // One sentence: what it answers or does.
    std::string_view details;  // Further sentences; may be empty.
    List<ArgumentDescription> arguments;
    std::string_view resultType;  // "OptionalString"
    std::string_view resultText;  // What the result is.
    std::string_view noAnswer;    // When a call gets no answer; empty for never.
    // Where the result comes from, or where the method writes. An answer may come from none of
    // them.
    List<ItemDescription> items;
    List<std::string_view> properties;
    List<std::string_view> files;  // With the partition's name: "/impdata/project_id.bin".
};

}  // namespace mlk::ctl
