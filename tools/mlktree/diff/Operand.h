#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/Command.h"
#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/Settings.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/TreeProperties.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/diff/Git.h"

namespace mlk::tree {

/** The parts that an operand may have: "model", "board", "customer", "country", "tree". */
extern const std::vector<std::string_view> kOperandParts;

/** What one side of a comparison is, as the command line says it. */
struct Operand {
    std::string text;   /**< the word itself */
    std::string source; /**< a folder, a snapshot file or "rev:REVISION"; empty for the default */
    /** Parts of the set by name, without "tree"; empty if the operand names no set. */
    std::map<std::string, std::string, std::less<>> set;

    /** Parts of the set that options have given. */
    std::set<std::string, std::less<>> ofOptions;

    bool namesSet() const { return !set.empty(); }
};

/**
 * Takes an operand apart: `model=6,country=GERMANY,tree=DIR`, or a source alone. The names of
 * boards, customers and trees may have commas; they end before what looks like another part.
 *
 * @throw UsageError if it has a part that does not exist, twice, or without a value
 */
Operand parseOperand(const std::string& word);

/**
 * Adds what --model, --board, --customer and --country say to the parts of a set.
 *
 * @throw UsageError if the operand has such a part already
 */
void addParts(Operand& operand, const Arguments& arguments);

/** A side of a comparison: its answers, and what these show texts of. */
class OpenOperand {
  public:
    /**
     * Reads what the operand names. Of a tree that is no set, --customer names the customer files.
     *
     * @param isOneSet  only one set is wanted; the operand's parts choose it
     * @throw UsageError if there is no such source, or it has no such set
     */
    OpenOperand(const Operand& operand, bool isOneSet, const Arguments& arguments,
                const Environment& environment);

    const LineAnswers& answers() const { return *mAnswers; }
    bool isSnapshot() const { return mIsSnapshot; }

    /**
     * Reads a tree again for a board or a country that it does not name itself, as --board and
     * --country of other commands do. Leaves it as it is if it cannot have that board.
     */
    void addSets(const Selection& selection);

    /** The set that the operand chooses. @throw UsageError if it fits none or several */
    const AnswerSet& set() const;

  private:
    void openTree(const std::string& folder, const std::string& name, bool isOneSet,
                  const Arguments& arguments);
    void openSnapshot(const std::string& path);

    const Operand mOperand;
    bool mIsSnapshot = false;
    std::unique_ptr<TemporaryFolder> mExtracted;
    std::unique_ptr<const Tree> mTree;
    std::unique_ptr<const Settings> mSettings;
    std::unique_ptr<const TreeProperties> mProperties;
    std::unique_ptr<const ProductLine> mLine;
    std::unique_ptr<const LineAnswers> mAnswers;
};

}  // namespace mlk::tree
