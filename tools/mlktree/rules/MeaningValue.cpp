#include "tools/mlktree/rules/MeaningValue.h"

#include <charconv>
#include <cinttypes>

#include "common/Decimal.h"
#include "host/properties/PropertyValue.h"
#include "tools/mlktree/Texts.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
using product::ValueType;

std::string rangeText(const NumberRange& range) {
    const NumberRange all;
    return range.least == all.least && range.most == all.most
                   ? "of 32 bits"
                   : "from " + std::to_string(range.least) + " to " + std::to_string(range.most);
}

std::string problemOfDecimal(std::string_view value, const NumberRange& range) {
    if (isDecimalIn(value, range)) {
        return "";
    }
    const std::string expected = ", where a decimal number " + rangeText(range) + " is expected";
    const NumberRange all{std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max()};
    return isDecimalIn(value, all)
                   ? quoted(value) + " is out of range" + expected
                   : quoted(value) + " counts as " + std::to_string(product::parseDecimal(value)) +
                             expected;
}

std::string problemOfSwitch(std::string_view value) {
    // Nothing at all is how product lines write that a set lacks something.
    return value.empty() || value == "true" || value == "false"
                   ? ""
                   : quoted(value) + " switches off: only exactly \"true\" switches on";
}

std::string problemOfFlag(std::string_view value) {
    if (value == "true" || value == "false" || isDecimalIn(value, {})) {
        return "";
    }
    const bool isOn = product::parseDecimal(value) > 0;
    return quoted(value) + " switches " + (isOn ? "on" : "off") +
           ", where \"true\", \"false\" or a number is expected";
}

std::string problemOfPropertySwitch(std::string_view value) {
    return host::switchOf(value)
                   ? ""
                   : quoted(value) + " counts as a missing property; write \"1\" or \"0\"";
}

std::string problemOfPropertyNumber(std::string_view value) {
    const NumberRange range;
    const std::string text(value);
    const int64_t number = host::numberOf(text, range.least, range.most, 0);
    if (number == 0 && host::numberOf(text, range.least, range.most, 1) == 1) {
        return quoted(value) +
               " counts as a missing property, where a number of 32 bits is "
               "expected";
    }
    char* end = nullptr;
    (void)strtoimax(text.c_str(), &end, 0);
    return *end == '\0' ? ""
                        : quoted(value) + " counts as " + std::to_string(number) +
                                  ", where a number is expected";
}

}  // namespace

bool isDecimalIn(std::string_view value, const NumberRange& range) {
    std::string_view digits = value;
    if (!digits.empty() && digits.front() == '+') {
        digits.remove_prefix(1);
        if (beginsWith(digits, "-")) {
            return false;
        }
    }
    int64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return !digits.empty() && error == std::errc() && end == digits.data() + digits.size() &&
           number >= range.least && number <= range.most;
}

std::string problemOf(ValueType type, std::string_view value, const NumberRange& range) {
    switch (type) {
        case ValueType::SWITCH:
            return problemOfSwitch(value);
        case ValueType::INTEGER:
            return problemOfDecimal(value, range);
        case ValueType::FEATURE:
            return problemOfFlag(value);
        case ValueType::PROPERTY_SWITCH:
            return problemOfPropertySwitch(value);
        case ValueType::PROPERTY_NUMBER:
        case ValueType::INVERTED_NUMBER:
            return problemOfPropertyNumber(value);
        case ValueType::TEXT:
        case ValueType::PATH:
        case ValueType::FOLDER:
            break;
    }
    return "";
}

const std::vector<std::string_view>& featureKeys() {
    static const std::vector<std::string_view> keys = [] {
        std::vector<std::string_view> all;
        for (const product::TvSystemRow& row : product::kTvSystems) {
            all.emplace_back(row.key);
        }
        for (const product::TvFlagRow& row : product::kTvFlags) {
            all.emplace_back(row.key);
        }
        return all;
    }();
    return keys;
}

std::string problemOfFeature(std::string_view key, std::string_view value) {
    for (const product::TvSystemRow& row : product::kTvSystems) {
        if (key == row.key) {
            return problemOf(product::TvSystemRow::kType, value, {row.least, row.most});
        }
    }
    for (const product::TvFlagRow& row : product::kTvFlags) {
        if (key == row.key) {
            return problemOf(product::TvFlagRow::kType, value);
        }
    }
    return "";
}

}  // namespace mlk::tree
