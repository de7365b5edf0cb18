#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/ReadObserver.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Writes down what the readers of files make of every line, in the order in which it hears it.
 *
 *     4 item "k = 1" [A]|k|1
 *     4:50 ignored "x" |x|
 *     7 problem: no "=", line skipped
 *     8 item "k=2" [A]|k|2 old
 *     9 item |TV_SYSTEM|DVB of FRANCE
 *
 * That is: number, column if it is not 1, use, text, section|key|value unless all are empty, owner,
 * and "old", "cut" and "nul" if so. The text of an XML element is left out if it is empty and the
 * column 0, as both have to be. Of a text of more than 40 bytes, the beginning and the size are
 * written. One thread.
 */
class RecordedLines : public ReadObserver {
  public:
    void onLine(const ReadLine& line) override { mHeard.emplace_back(line.path, textOf(line)); }
    void onProblem(const ReadProblem& problem) override {
        mHeard.emplace_back(problem.path,
                            std::to_string(problem.line) + " problem: " +
                                    implementation::textOf(problem.kind, problem.detail));
    }

    /** Everything that was heard. */
    std::vector<std::string> all() const {
        std::vector<std::string> texts;
        for (const auto& [path, text] : mHeard) {
            texts.push_back(text);
        }
        return texts;
    }
    /** What was heard of one file. */
    std::vector<std::string> of(std::string_view path) const {
        std::vector<std::string> texts;
        for (const auto& [from, text] : mHeard) {
            if (from == path) {
                texts.push_back(text);
            }
        }
        return texts;
    }
    /** The files in the order in which they were first heard of. */
    std::vector<std::string> files() const {
        std::vector<std::string> paths;
        for (const auto& [path, text] : mHeard) {
            bool isKnown = false;
            for (const std::string& known : paths) {
                isKnown = isKnown || known == path;
            }
            if (!isKnown) {
                paths.push_back(path);
            }
        }
        return paths;
    }
    void clear() { mHeard.clear(); }

  private:
    static const char* nameOf(LineUse use) {
        switch (use) {
            case LineUse::NOTHING:
                return "nothing";
            case LineUse::SECTION:
                return "section";
            case LineUse::ITEM:
                return "item";
            case LineUse::IGNORED:
                return "ignored";
            case LineUse::LOST:
                return "lost";
        }
        return "?";
    }
    static std::string shortened(std::string_view text) {
        constexpr size_t kMost = 40;
        constexpr size_t kShown = 8;
        if (text.size() <= kMost) {
            return std::string(text);
        }
        return std::string(text.substr(0, kShown)) + "...(" + std::to_string(text.size()) + ")";
    }
    static std::string textOf(const ReadLine& line) {
        std::string text = std::to_string(line.number);
        if (line.column != 1 && (line.column != 0 || !line.text.empty())) {
            text += ":" + std::to_string(line.column);
        }
        text += std::string(" ") + nameOf(line.use);
        if (line.column != 0 || !line.text.empty()) {
            text += " \"" + shortened(line.text) + "\"";
        }
        if (!line.section.empty() || !line.key.empty() || !line.value.empty()) {
            text += " " + shortened(line.section) + "|" + shortened(line.key) + "|" +
                    shortened(line.value);
        }
        if (!line.owner.empty()) {
            text += " of " + std::string(line.owner);
        }
        text += line.isNew ? "" : " old";
        text += line.isCut ? " cut" : "";
        text += line.hasNul ? " nul" : "";
        return text;
    }

    std::vector<std::pair<std::string, std::string>> mHeard;  // path and text
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
