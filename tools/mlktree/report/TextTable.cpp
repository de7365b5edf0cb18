#include "tools/mlktree/report/TextTable.h"

#include <array>
#include <charconv>

#include "common/TextHash.h"
#include "tools/common/Text.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

size_t TextTable::idOf(std::string_view text) {
    const uint32_t hash = product::shortHash(product::hashText(text, 0));
    uint32_t& number =
            mIndex.findOrAdd(hash, [&](uint32_t other) { return mTexts[other] == text; });
    if (number == product::HashIndex::kNone) {
        number = static_cast<uint32_t>(mTexts.size());
        mTexts.emplace_back(text);
    }
    return number;
}

std::string TextTable::json() const {
    std::string out;
    for (const std::string& text : mTexts) {
        out += out.empty() ? '[' : ',';
        appendJsonString(out, text);
    }
    return out + "]";
}

NumberList& NumberList::addSigned(long long number) {
    if (mText.size() > 1) {
        mText += ',';
    }
    std::array<char, 20> digits{};  // of the smallest number, with its sign
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    mText.append(digits.data(), end);
    return *this;
}

}  // namespace mlk::tree
