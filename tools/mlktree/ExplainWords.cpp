#include "tools/mlktree/ExplainWords.h"

#include "tools/common/Text.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

// A form of the words after its first, which names it.
struct Form {
    std::string_view word;  // empty for that without such a word
    Question::Kind kind;
    std::vector<std::string_view> operands;
    std::vector<Completion> completions;  // of the operands
    bool isOptional;                      // without operands it asks for all there are
};

const std::vector<Form>& forms() {
    static const std::vector<Form> kForms = {
            {"feature", Question::Kind::FEATURE, {"NAME"}, {Completion::FEATURE}, true},
            {"audio",
             Question::Kind::AUDIO,
             {"SECTION", "KEY"},
             {Completion::SOUND_SECTION, Completion::SOUND_KEY},
             true},
            {"country", Question::Kind::COUNTRY, {"NAME"}, {Completion::COUNTRY}, true},
            {"file", Question::Kind::FILE, {"PATH"}, {Completion::TREE_FILE}, false},
    };
    return kForms;
}

const Form* formOf(const std::vector<std::string>& words) {
    for (const Form& form : forms()) {
        if (!words.empty() && words.front() == form.word) {
            return &form;
        }
    }
    return nullptr;
}

std::string inBrackets(const std::string& section) {
    return beginsWith(section, "[") ? section : "[" + section + "]";
}

[[noreturn]] void refuse(const std::string& what) {
    throw UsageError(
            "explain takes SECTION, SECTION KEY, feature NAME, audio SECTION KEY, country "
            "NAME or file PATH, and then TREE; " +
            what + " (see mlktree explain --help)");
}

// Takes the last word off as the tree if there is one more than the operands.
void takeTree(std::vector<std::string>& words, size_t operands, bool isTreeNamed,
              Question& question) {
    if (words.size() <= operands) {
        return;
    }
    if (isTreeNamed || words.size() > operands + 1) {
        refuse(excerpt(words[operands]) + " is too much" +
               (isTreeNamed ? ", since --tree names the tree" : ""));
    }
    question.tree = words.back();
    words.pop_back();
}

Question questionOfItem(std::vector<std::string> words, bool isTreeNamed) {
    Question question;
    const bool isTreeOnly = words.size() == 1 && !isTreeNamed && looksLikeTree(words[0]);
    if (words.empty() || isTreeOnly) {
        question.kind = Question::Kind::ALL;
        question.tree = words.empty() ? "" : words[0];
        return question;
    }
    const bool isSectionOnly =
            words.size() == 1 || (words.size() == 2 && !isTreeNamed && looksLikeTree(words[1]));
    takeTree(words, isSectionOnly ? 1 : 2, isTreeNamed, question);
    question.kind = isSectionOnly ? Question::Kind::SECTION : Question::Kind::ITEM;
    question.section = inBrackets(words[0]);
    if (!isSectionOnly) {
        question.key = words[1];
    }
    return question;
}

}  // namespace

Question questionOf(const std::vector<std::string>& words, bool isTreeNamed) {
    const Form* form = formOf(words);
    if (form == nullptr) {
        return questionOfItem(words, isTreeNamed);
    }
    Question question;
    question.kind = form->kind;
    std::vector<std::string> operands(words.begin() + 1, words.end());
    if (operands.empty() && !form->isOptional) {
        refuse(std::string(form->word) + " lacks " + std::string(form->operands.front()));
    }
    const bool isTreeEarly = form->isOptional && !operands.empty() && !isTreeNamed &&
                             operands.size() <= form->operands.size() &&
                             looksLikeTree(operands.back());
    takeTree(operands, isTreeEarly ? operands.size() - 1 : form->operands.size(), isTreeNamed,
             question);
    operands.resize(2);
    if (form->kind == Question::Kind::AUDIO) {
        question.section = operands[0].empty() ? "" : inBrackets(operands[0]);
        question.key = operands[1];
    } else {
        question.name = operands[0];
    }
    return question;
}

std::vector<Completion> explainWord(const std::vector<std::string>& before) {
    if (before.empty()) {
        return {Completion::EXPLAINED, Completion::SECTION};
    }
    const Form* form = formOf(before);
    if (form == nullptr) {
        return before.size() == 1 ? std::vector<Completion>{Completion::KEY, Completion::FOLDER}
                                  : std::vector<Completion>{Completion::FOLDER};
    }
    const size_t at = before.size() - 1;
    return {at < form->completions.size() ? form->completions[at] : Completion::FOLDER};
}

std::vector<std::string_view> explainForms() {
    return {"[SECTION [KEY]] [TREE]", "feature [NAME] [TREE]", "audio [SECTION [KEY]] [TREE]",
            "country [NAME] [TREE]", "file PATH [TREE]"};
}

}  // namespace mlk::tree
