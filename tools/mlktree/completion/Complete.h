#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/Command.h"

namespace mlk::tree {

/** Something that a shell may offer for a word, and what it is. */
struct Candidate {
    std::string word;
    std::string what; /**< may be empty */
};

/** What a shell offers: these words, and names of files or folders if asked for. */
struct Candidates {
    std::vector<Candidate> words;
    bool files = false;
    bool folders = false;
};

/** Names that come from the tree. Nothing throws: a tree that cannot be read has no names. */
class TreeNames {
  public:
    TreeNames() = default;
    virtual ~TreeNames() = default;
    TreeNames(const TreeNames&) = delete;
    TreeNames& operator=(const TreeNames&) = delete;

    /**
     * Names of that kind: MODEL, BOARD, CUSTOMER, COUNTRY, PROPERTY, SECTION, KEY, FEATURE,
     * SOUND_SECTION, SOUND_KEY, TREE_FILE, ROW. Sections have brackets, except as rows; paths are
     * relative to the tree.
     *
     * @param given    what the command line says so far
     * @param section  of KEY; of ROW the word as far as it is typed
     */
    virtual std::vector<Candidate> of(Completion kind, const Arguments& given,
                                      const std::string& section) = 0;
};

/**
 * What a shell offers for the last of these words, the words after "mlktree". It may be empty or
 * begun; the shell or shownCandidates() picks those that begin with it.
 */
Candidates candidatesFor(const std::vector<std::string>& words, TreeNames& names);

/**
 * The candidates that begin with the text, one a line: the word, and after a tab what it is. Before
 * them a line ":files" or ":folders" if the shell shall add its own.
 */
std::string shownCandidates(const Candidates& candidates, const std::string& begun);

}  // namespace mlk::tree
