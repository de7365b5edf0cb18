#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace mlk::tree {

/**
 * How many files have each of several names, and the name that is probably meant by one that few
 * have. Add all names, then sort them, then ask.
 */
class NameUses {
  public:
    /** Counts files that have the name. */
    void add(std::string_view name, size_t files) { mCounts[name] += files; }

    /**
     * Ends adding.
     *
     * @param isSmall  whether a name of one file may be meant by another one, which no file has
     */
    void sort(bool isSmall);

    /** How many files have the name. */
    size_t countOf(std::string_view name) const;

    /**
     * A name that is spelt nearly like this one and that more files have; empty if no name is.
     *
     * @param searches  how many names the caller has looked for: after thousands, which no line
     *                  that somebody wrote has, nothing is found
     */
    std::string_view commonNameFor(std::string_view name, size_t& searches) const;

    /**
     * Another name that is spelt nearly like this one and that as many files have, or more; empty
     * if no name is.
     *
     * @param searches  as of commonNameFor()
     */
    std::string_view rivalNameFor(std::string_view name, size_t& searches) const;

  private:
    // The nearest of the other names that `least` files or more have.
    std::string_view nearestOf(size_t least, std::string_view name, size_t& searches) const;

    std::unordered_map<std::string_view, size_t> mCounts;
    std::vector<std::string_view> mMostUsed;  // at most kMostCandidates
};

}  // namespace mlk::tree
