#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/Command.h"

namespace mlk::tree {

/** What `mlktree explain` is asked. */
struct Question {
    enum class Kind {
        ALL,     /**< all items */
        SECTION, /**< all items of a section */
        ITEM,    /**< one item */
        FEATURE, /**< a TV feature; without a name all of them */
        AUDIO,   /**< a sound delay; without a key those of the section, or all */
        COUNTRY, /**< what a country brings; without a name that of the set */
        FILE,    /**< who names a file */
    };
    Kind kind = Kind::SECTION;
    std::string section; /**< of SECTION, ITEM and AUDIO, with its brackets */
    std::string key;     /**< of ITEM and AUDIO */
    std::string name;    /**< of FEATURE, COUNTRY and FILE */
    std::string tree;    /**< TREE; empty if the words name none */
};

/**
 * Tells what the words of `mlktree explain` mean:
 *
 *     [SECTION [KEY]] [TREE]      the section with or without its brackets
 *     feature [NAME] [TREE]
 *     audio [SECTION [KEY]] [TREE]
 *     country [NAME] [TREE]
 *     file PATH [TREE]
 *
 * A word "feature", "audio", "country" or "file" in front is what it says; sections with such names
 * are asked for with brackets: "[file]". What may be left out is a tree if it has a slash, is ".",
 * "..", or names a folder that holds tvconfigs/.
 *
 * @param isTreeNamed  whether --tree names the tree: then no word does
 * @throw UsageError if a word is missing or one is too much
 */
Question questionOf(const std::vector<std::string>& words, bool isTreeNamed);

/** What a shell offers after these words of explain. For Command::nextWord. */
std::vector<Completion> explainWord(const std::vector<std::string>& before);

/** The forms of the words, for Command::words. */
std::vector<std::string_view> explainForms();

}  // namespace mlk::tree
