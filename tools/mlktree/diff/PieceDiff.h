#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/diff/Change.h"

namespace mlk::tree {

/** Two sets that are compared. */
struct SetPair {
    const AnswerSet* a = nullptr;
    const AnswerSet* b = nullptr;
};

/**
 * Compares the pieces of two lines, each two pieces once. A difference of the same name and values
 * is one change, whichever pieces have it; its places are those of the first. One thread at a time.
 */
class PieceDiff {
  public:
    /** Both must outlive the object. */
    PieceDiff(const LineAnswers& a, const LineAnswers& b);

    /** Numbers of changes. */
    using List = std::vector<uint32_t>;

    /** The numbers of the lists of changes between two sets, without empty ones. */
    std::vector<uint32_t> listsOf(const SetPair& sets);

    const std::vector<List>& lists() const { return mLists; }
    std::vector<Change>& changes() { return mChanges; }

    /** Adds a list of one change. @return the number of the list */
    uint32_t addList(Change change);

    /** The change of a list in two texts, such as the id of a customer; nothing if they are equal.
     */
    void compareTexts(List& list, ChangeKind kind, const std::string& name, const AnswerEntry& a,
                      const AnswerEntry& b);
    /** The changes of two lists of texts. */
    void compareLists(List& list, ChangeKind kind, const std::string& prefix, const ListPiece& a,
                      const ListPiece& b);
    /** Keeps a list. @return its number; kNone if it is empty */
    uint32_t keep(List list);

  private:
    using Layers = std::array<uint32_t, kItemLayers>;
    using Pair = std::pair<uint32_t, uint32_t>;

    /** An item on either side; null for none. */
    struct ItemPair {
        const AnswerItem* a = nullptr;
        const AnswerItem* b = nullptr;
    };

    uint32_t numberOf(Change change);
    ChangeSide sideOf(const LineAnswers& line, std::string_view value,
                      const AnswerPlace& place) const;
    std::string nameOf(const LineAnswers& line, uint32_t name) const;

    /** The names, in the numbers of both lines, of two pieces whose items differ. */
    const std::vector<uint32_t>& differing(uint32_t a, uint32_t b);
    void compareItem(List& list, uint32_t name, const SetPair& sets, const ItemPair& items);
    void addItemLists(std::vector<uint32_t>& lists, const SetPair& sets);
    uint32_t replacedItems(const SetPair& sets, const std::vector<uint32_t>& names);
    uint32_t features(ChangeKind kind, uint32_t a, uint32_t b);
    uint32_t delays(uint32_t a, uint32_t b);
    uint32_t auxiliary(const char* kind, const char* nothing, uint32_t a, uint32_t b);
    uint32_t list(ChangeKind kind, const char* prefix, uint32_t a, uint32_t b);
    uint32_t plans(uint32_t a, uint32_t b);
    void comparePlan(List& list, std::string_view kind, uint32_t a, uint32_t b);
    void compareDelay(List& list, std::string_view receiver, uint32_t name, const AnswerDelay* a,
                      const AnswerDelay* b);
    void addFileLists(std::vector<uint32_t>& lists, const SetPair& sets);
    void findChangedFiles();

    const LineAnswers& mA;
    const LineAnswers& mB;
    // The names of both lines in one order, and their numbers in each; kNone for none.
    std::vector<uint32_t> mNameOfA;
    std::vector<uint32_t> mNameOfB;
    std::vector<uint32_t> mToCommonA;
    std::vector<uint32_t> mToCommonB;

    std::vector<Change> mChanges;
    std::unordered_map<std::string, uint32_t> mNumbers;
    std::vector<List> mLists;
    // What was compared before.
    std::map<Pair, std::vector<uint32_t>> mDiffering;
    std::map<std::pair<Pair, std::vector<uint32_t>>, uint32_t> mBaseLists;
    std::map<std::pair<Layers, Layers>, std::vector<uint32_t>> mItemLists;
    std::map<std::pair<std::string, Pair>, uint32_t> mPieceLists;
    std::map<Pair, std::vector<uint32_t>> mPiecesLists;
    // Files whose bytes differ: the change of each, and the items that name it.
    std::map<std::string_view, uint32_t> mChangedFiles;
    std::vector<std::vector<const AnswerItem*>> mNamingA;  // by piece
    std::vector<std::vector<const AnswerItem*>> mNamingB;
};

}  // namespace mlk::tree
