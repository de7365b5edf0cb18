#include "tools/mlktree/report/TextTable.h"

#include "tools/common/Text.h"

namespace mlk::tree {

size_t TextTable::idOf(std::string_view text) {
    const auto [known, isNew] = mIds.try_emplace(std::string(text), mTexts.size());
    if (isNew) {
        mTexts.push_back(&known->first);
    }
    return known->second;
}

std::string TextTable::json() const {
    std::string out;
    for (const std::string* const text : mTexts) {
        out += out.empty() ? '[' : ',';
        appendJsonString(out, *text);
    }
    return out + "]";
}

NumberList& NumberList::addSigned(long long number) {
    if (mText.size() > 1) {
        mText += ',';
    }
    mText += std::to_string(number);
    return *this;
}

}  // namespace mlk::tree
