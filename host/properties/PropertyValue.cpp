#include "host/properties/PropertyValue.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <iterator>

namespace mlk::host {

bool isUtf8(std::string_view text) {
    // What a lead byte begins: its length, and the range of the byte after it, which keeps out
    // overlong forms, surrogates and characters beyond the last one.
    struct Form {
        uint8_t first, last;
        size_t length;
        uint8_t least = 0x80, most = 0xbf;
    };
    static constexpr Form kForms[] = {{0x00, 0x7f, 1},
                                      {0xc2, 0xdf, 2},
                                      {0xe0, 0xe0, 3, 0xa0},
                                      {0xe1, 0xec, 3},
                                      {0xed, 0xed, 3, 0x80, 0x9f},
                                      {0xee, 0xef, 3},
                                      {0xf0, 0xf0, 4, 0x90},
                                      {0xf1, 0xf3, 4},
                                      {0xf4, 0xf4, 4, 0x80, 0x8f}};
    while (!text.empty()) {
        const auto byteAt = [text](size_t at) { return static_cast<uint8_t>(text[at]); };
        const auto* const form =
                std::find_if(std::begin(kForms), std::end(kForms), [&](const Form& each) {
                    return byteAt(0) >= each.first && byteAt(0) <= each.last;
                });
        if (form == std::end(kForms) || text.size() < form->length) {
            return false;
        }
        for (size_t at = 1; at < form->length; ++at) {
            const bool isSecond = at == 1;
            if (byteAt(at) < (isSecond ? form->least : 0x80) ||
                byteAt(at) > (isSecond ? form->most : 0xbf)) {
                return false;
            }
        }
        text.remove_prefix(form->length);
    }
    return true;
}

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
