#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/Text.h"
#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/** Pointers to the items of a piece, as LineAnswers::itemsOf() gives those of a set. */
std::vector<const AnswerItem*> pointersTo(const ItemPiece& piece);

/**
 * Writes single pieces of a snapshot to a text, in the plain form. A line of the text is a section,
 * a channel, or a list.
 */
class PieceWriter {
  public:
    /** @param line  must outlive the object */
    explicit PieceWriter(const LineAnswers& line) : mLine(line) {}

  protected:
    void text(std::string_view value) { appendJsonString(mOut, value); }
    void name(std::string_view value) {
        text(value);
        mOut += ':';
    }
    void number(int64_t value);
    /** Items by section; their values as numbers, or as texts. */
    void writeItems(const std::vector<const AnswerItem*>& items, bool isNumbers);
    void writeFeatures(const FeaturePiece& piece);
    void writeDelays(const DelayPiece& piece);
    void writeTexts(const std::vector<std::string_view>& texts);
    void writeList(const ListPiece& piece);
    void writeChannels(const ChannelPiece& piece);

    const LineAnswers& mLine;
    std::string mOut;

  private:
    template <typename Pieces, typename GroupOf, typename Write>
    void writeGroups(const Pieces& pieces, const GroupOf& groupOf, const Write& write);
};

}  // namespace mlk::tree
