#pragma once

#include <string>

#include "tools/mlktree/Command.h"
#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/Settings.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/TreeProperties.h"

namespace mlk::tree {

/** What --model, --board, --customer and --country say. @throw UsageError if N is no number */
Selection selectionOf(const Arguments& arguments);

/**
 * The same for a command on one set: what is left out is what impdata and tvdata say.
 *
 * @throw UsageError also if there are several customer files
 */
Selection selectionOfSet(const Arguments& arguments);

/**
 * The folder of the tree: the word of the command line, --tree, MLK_ROOT, or the current folder, in
 * this order.
 *
 * @throw UsageError if both the word and --tree name one
 */
std::string treeFolder(const Arguments& arguments, const std::string& word,
                       const Environment& environment);

/**
 * Whether a word that could be something else is a tree: ".", "..", a path with "/", or a folder
 * that has tvconfigs/.
 */
bool looksLikeTree(const std::string& word);

/** The tree that a command line names, read: its settings, properties and product line. */
class OpenTree {
  public:
    /**
     * @param word       TREE of the command line; empty if it has none
     * @param selection  the sets that the command looks at
     * @throw UsageError if there is no such tree, or its mlktree.toml or an option is wrong
     */
    OpenTree(const Arguments& arguments, const std::string& word, const Environment& environment,
             const Selection& selection);

    const Tree& tree() const { return mTree; }
    const Settings& settings() const { return mSettings; }
    const TreeProperties& properties() const { return mProperties; }
    const ProductLine& line() const { return mLine; }

  private:
    const Tree mTree;
    const Settings mSettings;
    const TreeProperties mProperties;
    const ProductLine mLine;
};

}  // namespace mlk::tree
