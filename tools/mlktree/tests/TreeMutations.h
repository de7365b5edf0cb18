#pragma once

#include <random>
#include <string>
#include <vector>

#include "host/testing/TempDir.h"

namespace mlk::tree {

/** Changes single lines and files of a tree at random. */
class TreeMutations {
  public:
    /** @param root  the tree that is changed and put right again, a copy */
    TreeMutations(std::string root, uint32_t seed);

    /** Changes one line or file of a kind; the kinds come in turn. @return what it did */
    std::string change();

    /** Undoes the last change. */
    void undo();

    /** Names of the kinds of files, for a check that each was changed. */
    const std::vector<std::string>& kinds() const { return mKinds; }

    /** The kind of the last change. */
    const std::string& kind() const { return mKind; }

  private:
    std::string changed(const std::string& text, std::string& what);
    size_t below(size_t bound);

    const std::string mRoot;
    std::mt19937 mRandom;
    std::vector<std::string> mKinds;
    std::vector<std::vector<std::string>> mFiles;  // by kind
    size_t mTurn = 0;
    std::string mKind;
    std::string mPath;  // of the last change
    std::string mFormer;
};

}  // namespace mlk::tree
