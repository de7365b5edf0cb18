#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/set/SetModel.h"

namespace mlk::tree {

/** A tree with what its sets answer. */
struct Answered {
    explicit Answered(const std::string& root, const Selection& selection = {})
        : tree(root, {}),
          properties(root + "/data/property", {}),
          line(tree, settings, properties, selection),
          answers(answersOf(line, selection.isOneSet)) {}

    const Tree tree;
    const Settings settings;
    const TreeProperties properties;
    const ProductLine line;
    const std::unique_ptr<const LineAnswers> answers;
};

/** The partitions of the sample. */
std::string samplePath();

/**
 * What a set answers, by what is asked: "item [PANEL] m_pPanelName", "delay [ARC] ...",
 * "plan DTV_ANTENNA". Two tellers of it agree if their maps are equal. Values that a service gives
 * for whatever it does not know, such as the delay 0, are left out.
 */
using Told = std::map<std::string, std::string>;

/** What the answers of a line tell of one of its sets. */
Told toldBy(const LineAnswers& line, const AnswerSet& set);

/** What differs between two tellings. Of a file that only one side names, the item tells. */
std::set<std::string> differing(const Told& a, const Told& b);

/** The files that these items name, with their bytes, if the answers know them. */
Told filesTold(const LineAnswers& line, const Tree& tree, const Told& told);

/**
 * What the product's own objects tell of a set, without the model of answers. Items of sound and
 * auxiliary files are asked for by every name that such a file of the tree has.
 *
 * @param hasReceivers  also asks for the delays with each receiver that has a file
 */
Told toldByProduct(const ProductLine& line, const SetChoice& choice, bool hasReceivers = true);

/** The choice of a set, by its names. */
SetChoice choiceOf(const ProductLine& line, const LineAnswers& answers, const AnswerSet& set);

}  // namespace mlk::tree
