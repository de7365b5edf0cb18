#pragma once

#include <cstdint>
#include <vector>

#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/** Which pieces of a kind are written once, because two or more others refer to them. */
class PieceUses {
  public:
    explicit PieceUses(size_t count) : mUses(count) {}

    /** Tells that something refers to the piece. */
    void add(uint32_t number) {
        if (number != kNone) {
            ++mUses[number];
        }
    }
    /** Adds what one other piece refers to; what one set alone has is not shared by it. */
    void addAll(std::vector<uint32_t> numbers, bool isOfOneSet);
    /** Ends the adding: gives the shared pieces their numbers, in the order of the pieces. */
    void number();

    /** After number(). */
    bool isShared(uint32_t piece) const { return mNumbers[piece] != kNone; }
    /** The number of a shared piece. */
    uint32_t numberOf(uint32_t piece) const { return mNumbers[piece]; }
    /** The shared pieces, in the order of their numbers. */
    const std::vector<uint32_t>& shared() const { return mShared; }

  private:
    std::vector<uint32_t> mUses;
    std::vector<uint32_t> mNumbers;
    std::vector<uint32_t> mShared;
};

/** The uses of all pieces of a line. */
struct SnapshotUses {
    explicit SnapshotUses(const LineAnswers& line);

    /** The plans of a set: those that stand for all with the same channels; kNone for none. */
    uint32_t plansOf(const AnswerSet& set) const {
        return set.plans == kNone ? kNone : plansLike[set.plans];
    }

    /** The plans that stand for those with the same channels, which other lines name. */
    std::vector<uint32_t> plansLike;

    PieceUses answers;   /**< LineAnswers::pieces */
    PieceUses items;     /**< as layers of items */
    PieceUses auxiliary; /**< LineAnswers::items as karaoke, keys or DDC/CI */
    PieceUses features;  /**< also as framework switches */
    PieceUses delays;
    PieceUses lists;
    PieceUses plans;
    PieceUses channels;
};

}  // namespace mlk::tree
