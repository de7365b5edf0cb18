#include "host/properties/PropertyValue.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <iterator>

namespace mlk::host {

std::optional<bool> switchOf(std::string_view value) {
    struct Word {
        std::string_view text;
        bool value;
    };
    static constexpr Word kWords[] = {
            {"1", true},  {"true", true},   {"y", true},  {"yes", true}, {"on", true},
            {"0", false}, {"false", false}, {"n", false}, {"no", false}, {"off", false}};
    const auto* const word = std::find_if(std::begin(kWords), std::end(kWords),
                                          [&](const Word& each) { return each.text == value; });
    return word == std::end(kWords) ? std::nullopt : std::optional(word->value);
}

int64_t numberOf(const std::string& value, int64_t least, int64_t most, int64_t defaultValue) {
    char* end = nullptr;
    errno = 0;
    const intmax_t number = strtoimax(value.c_str(), &end, 0);
    const bool fits = errno != ERANGE && number >= least && number <= most;
    return end != value.c_str() && fits ? static_cast<int64_t>(number) : defaultValue;
}

}  // namespace mlk::host
