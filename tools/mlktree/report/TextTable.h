#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

#include "common/HashIndex.h"

namespace mlk::tree {

/**
 * Texts of a report, each of them once: everything else of the page names a text by its number.
 * Number 0 is the empty text. Numbers follow the order in which texts are first asked for, so that
 * the page is the same from run to run. One thread at a time.
 */
class TextTable {
  public:
    TextTable() { idOf(""); }
    TextTable(const TextTable&) = delete;
    TextTable& operator=(const TextTable&) = delete;

    /** The number of a text. Copies the text when it is new. */
    size_t idOf(std::string_view text);

    /** All texts as a JSON array; bytes that are not UTF-8 are lone surrogates. */
    std::string json() const;

  private:
    std::deque<std::string> mTexts;  // by number
    vendor::morlak::mlkconfigs::V1_0::implementation::HashIndex mIndex;
};

/** Appends numbers to a JSON array. */
class NumberList {
  public:
    NumberList& add(size_t number) { return addSigned(static_cast<long long>(number)); }
    NumberList& addSigned(long long number);

    /** The array so far. */
    std::string json() const { return mText + "]"; }
    bool isEmpty() const { return mText.size() == 1; }

  private:
    std::string mText = "[";
};

}  // namespace mlk::tree
