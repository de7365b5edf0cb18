#pragma once

#include <hidl/HidlSupport.h>
#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tools/mlkctl/Argument.h"

/**
 * The kinds of parameters that methods have: what a user writes for a parameter, and how it is
 * read. Each function has one overload for each type.
 */
namespace mlk::ctl {

/** A method's parameter as its table row names it. */
struct Parameter {
    Parameter(const char* parameterName, NumberNames numberNames = {})
        : name(parameterName), names(std::move(numberNames)) {}

    const char* name;   // as the interface declares it: "cableType"
    NumberNames names;  // of a number: names that stand for it
};

/** Hands out the arguments of a call, each read for its word. There are as many words. */
class ArgumentReader {
  public:
    ArgumentReader(const std::vector<Word>& words, const std::vector<Argument>& arguments)
        : mWords(words), mArguments(arguments) {}

    /** The next argument. Throws Failure USAGE if it is not of this kind. */
    std::string text();
    bool flag();
    int64_t number(int64_t least, int64_t most);

  private:
    const std::vector<Word>& mWords;
    const std::vector<Argument>& mArguments;
    size_t mNext = 0;
};

/** Stands for a type as an argument. */
template <typename T>
struct Type {};

/** Adds the words that stand for a parameter. */
void describe(Type<bool>, const Parameter& parameter, std::vector<Word>* words);
void describe(Type<int32_t>, const Parameter& parameter, std::vector<Word>* words);
void describe(Type<::android::hardware::hidl_string>, const Parameter& parameter,
              std::vector<Word>* words);
/** Two words: category, then key. */
void describe(Type<::vendor::morlak::mlkconfigs::V1_0::ProjectConfigKey>,
              const Parameter& parameter, std::vector<Word>* words);
void describeEnumeration(const Parameter& parameter, NumberNames enumerators,
                         std::vector<Word>* words);

template <typename E, typename = std::enable_if_t<std::is_enum_v<E>>>
void describe(Type<E>, const Parameter& parameter, std::vector<Word>* words) {
    NumberNames enumerators{"an enumerator", {}};
    for (const E value : ::android::hardware::hidl_enum_range<E>()) {
        enumerators.rows.emplace_back(toString(value), static_cast<int64_t>(value));
    }
    describeEnumeration(parameter, std::move(enumerators), words);
}

/** Reads the next arguments as a value. Throws Failure USAGE. */
void read(ArgumentReader& reader, bool* value);
void read(ArgumentReader& reader, int32_t* value);
void read(ArgumentReader& reader, ::android::hardware::hidl_string* value);
void read(ArgumentReader& reader, ::vendor::morlak::mlkconfigs::V1_0::ProjectConfigKey* value);

/** Enumerations travel unchecked: any 32 bits are allowed, signed or not. */
template <typename E, typename = std::enable_if_t<std::is_enum_v<E>>>
void read(ArgumentReader& reader, E* value) {
    static_assert(sizeof(E) == sizeof(uint32_t));
    const int64_t number = reader.number(std::numeric_limits<int32_t>::min(),
                                         std::numeric_limits<uint32_t>::max());
    *value = static_cast<E>(static_cast<uint32_t>(number));
}

}  // namespace mlk::ctl
