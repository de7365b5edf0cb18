#include "tools/mlktree/rules/Regional.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

std::string_view fileNamed(const ProductLine& line, const Model& model, const Board& board,
                           const product::ConfigKey& key) {
    const LayeredItem item = line.item(model, board, key.category, key.key);
    return item ? item.line->value : std::string_view();
}

std::string pathOf(const ProductLine& line, std::string_view value) {
    return line.tree().relative(line.tree().hostOfWritten(value));
}

// The files of a line by their paths.
class FilesByPath {
  public:
    explicit FilesByPath(const ProductLine& line) : mLine(line) {
        for (const TvSystemFiles& files : line.tvSystems()) {
            mSystems.emplace(files.file->path(), &files);
        }
        for (const PlanFiles& files : line.planFolders()) {
            mPlans.emplace(files.folder->path(), &files);
        }
    }

    RegionalSet setOf(std::string_view list, std::string_view systems,
                      std::string_view plans) const {
        RegionalSet set;
        set.list = list.empty() ? nullptr : mLine.find(pathOf(mLine, list));
        set.systems = systems.empty() ? nullptr : at(mSystems, pathOf(mLine, systems));
        set.plans = at(mPlans, planFolderOf(mLine.tree(), plans));
        return set;
    }

  private:
    template <typename Files>
    static const Files* at(const std::map<std::string, const Files*>& all,
                           const std::string& path) {
        const auto found = all.find(path);
        return found != all.end() ? found->second : nullptr;
    }

    const ProductLine& mLine;
    std::map<std::string, const TvSystemFiles*> mSystems;
    std::map<std::string, const PlanFiles*> mPlans;
};

}  // namespace

std::string flawAtEnds(std::string_view text) {
    const auto nameOf = [](char c) {
        switch (c) {
            case '\r':
                return "a carriage return";
            case '\t':
                return "a tab";
            case '\n':
                return "a line break";
            default:
                return "a blank";
        }
    };
    const std::string_view core = trimmed(text);
    if (core.size() == text.size() || core.empty()) {
        return {};
    }
    const bool isAtEnd = core.data() + core.size() < text.data() + text.size();
    return isAtEnd ? nameOf(text.back()) + std::string(" at its end")
                   : nameOf(text.front()) + std::string(" at its beginning");
}

bool hasCountries(const FileLines& list) {
    return std::any_of(list.lines().begin(), list.lines().end(),
                       [](const ReadLine& read) { return read.use == LineUse::ITEM; });
}

bool hasBlankInElement(const ReadLine& read) {
    return read.column == 0 && !flawAtEnds(read.value).empty();
}

std::vector<RegionalSet> regionalSetsOf(const ProductLine& line) {
    // Most models of a line share their values, so look up the files of each combination once.
    std::set<std::tuple<std::string_view, std::string_view, std::string_view>> values;
    for (const Model& model : line.models()) {
        if (!model.counts || !isUsable(model.file)) {
            continue;
        }
        for (const Board& board : line.boards()) {
            values.emplace(fileNamed(line, model, board, product::item::kCountries),
                           fileNamed(line, model, board, product::item::kTvSystems),
                           fileNamed(line, model, board, product::item::kChannelPlans));
        }
    }
    const FilesByPath files(line);
    std::vector<RegionalSet> sets;
    sets.reserve(values.size());
    for (const auto& [list, systems, plans] : values) {
        sets.push_back(files.setOf(list, systems, plans));
    }
    return sets;
}

}  // namespace mlk::tree
