// The items of model and board files, and the names that are meant for others.

#include <algorithm>
#include <cctype>
#include <set>

#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Meaning.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

// More names than any line that somebody wrote has.
constexpr size_t kMostSearches = 20'000;

// Whether an item is one, as its author meant it, as far as its line tells.
bool isSound(const ReadLine& read) {
    return !read.key.empty() && read.text.find('=') != std::string_view::npos &&
           !looksLikeComment(read.text) &&
           std::none_of(read.key.begin(), read.key.end(),
                        [](unsigned char c) { return std::iscntrl(c) != 0; });
}

class TableBuilder {
  public:
    explicit TableBuilder(const ProductLine& line) : mLine(line) {}

    ItemTable build() {
        lookAtContents();
        std::set<const FileLines*> seen;
        const auto add = [&](const FileLines* file, bool isBoard) {
            const bool isUsed = file != nullptr && file->format() == FileFormat::PROJECT &&
                                file->exists() && !file->isUnreadable();
            if (isUsed && seen.insert(file).second) {
                addFile(*file, isBoard);
            }
        };
        for (const Model& model : mLine.models()) {
            add(model.counts ? model.file : nullptr, false);
        }
        for (const Board& board : mLine.boards()) {
            add(board.file, true);
        }
        dropUnused();
        findMeantSections();
        findMeantKeys();
        return std::move(mTable);
    }

  private:
    // What a line does to the items of its file.
    struct LineFacts {
        bool beginsSection = false;
        bool breaksSection = false;  // what follows stands in a section that is not meant
        SectionFacts* section = nullptr;
        ItemFacts* item = nullptr;  // of a sound item
    };

    void lookAtContents() {
        for (const LineContent& content : mLine.contents()) {
            const ReadLine& read = *content.line;
            LineFacts& facts = mFacts.emplace_back();
            if (content.format != FileFormat::PROJECT) {
                continue;
            }
            if (read.use == LineUse::SECTION) {
                facts.beginsSection = true;
                facts.breaksSection = !isWholeSection(read.section);
                facts.section = &mTable.sections[read.section];
            } else if (read.use == LineUse::ITEM) {
                facts.breaksSection = isBrokenSection(read);
                facts.item = isSound(read) ? &mTable.items[{read.section, read.key}] : nullptr;
            }
        }
    }

    void addFile(const FileLines& file, bool isBoard) {
        ItemFile& added = mTable.files.emplace_back();
        added.file = &file;
        added.isBoard = isBoard;
        for (const auto& [name, first] : file.sections()) {
            SectionFacts& facts = *mFacts[file.contentOf(*first)].section;
            facts.models += isBoard ? 0 : 1;
            added.sections.push_back({name, first, &facts});
        }
        bool isBroken = false;
        for (size_t i = 0; i < file.lines().size(); ++i) {
            const LineFacts& facts = mFacts[file.contents()[i]];
            isBroken = facts.breaksSection || (isBroken && !facts.beginsSection);
            if (!isBroken && facts.item != nullptr && file.counts(file.lines()[i])) {
                facts.item->models += isBoard ? 0 : 1;
                facts.item->files += 1;
                added.items.push_back({&file.lines()[i], facts.item});
            }
        }
    }

    // Drops the names that no item of the files has.
    void dropUnused() {
        for (auto item = mTable.items.begin(); item != mTable.items.end();) {
            item = item->second.files == 0 ? mTable.items.erase(item) : std::next(item);
        }
        size_t number = 0;
        for (auto& [name, facts] : mTable.items) {
            facts.number = number++;
            facts.known = product::findKnownItem({name.first, name.second});
            facts.own = mLine.settings().find(name.first, name.second);
        }
    }

    void findMeantSections() {
        std::set<std::string_view> names;  // of the files that are used
        for (const ItemFile& file : mTable.files) {
            for (const ItemFile::Section& section : file.sections) {
                names.insert(section.name);
            }
        }
        size_t searches = 0;
        const std::vector<std::string_view>& known = knownSections();
        for (const std::string_view name : names) {
            if (std::find(known.begin(), known.end(), name) != known.end() ||
                !isWholeSection(name) || mLine.settings().knowsSection(name)) {
                continue;
            }
            if (++searches > kMostSearches) {
                break;
            }
            const std::string_view right = nearestName(name, known);
            const auto hasBoth = [&](const ItemFile& item) {
                return item.file->sections().count(name) > 0 &&
                       item.file->sections().count(right) > 0;
            };
            if (isMeantBy(name, right, hasBoth)) {
                mTable.sections[name].meant = right;
            }
        }
    }

    void findMeantKeys() {
        size_t searches = 0;
        for (auto& [name, facts] : mTable.items) {
            if (facts.isKnown()) {
                continue;
            }
            if (++searches > kMostSearches) {
                break;
            }
            const auto& [section, key] = name;
            const std::string_view right = nearestName(key, knownKeysIn(section));
            const auto hasBoth = [&, inSection = section, own = key](const ItemFile& item) {
                return item.file->find(inSection, own) != nullptr &&
                       item.file->find(inSection, right) != nullptr;
            };
            if (isMeantBy(key, right, hasBoth)) {
                facts.meant = right;
            }
        }
    }

    template <typename HasBoth>
    bool isMeantBy(std::string_view name, std::string_view right, const HasBoth& hasBoth) const {
        return !right.empty() && (differsInCase(name, right) ||
                                  std::none_of(mTable.files.begin(), mTable.files.end(), hasBoth));
    }

    const ProductLine& mLine;
    ItemTable mTable;
    std::vector<LineFacts> mFacts;  // by content
};

}  // namespace

const ItemFacts* ItemTable::find(const ItemName& name) const {
    const auto found = items.find(name);
    return found != items.end() ? &found->second : nullptr;
}

const ItemTable& itemTableOf(const ProductLine& line) {
    return line.memo().get<ItemTable>([&] { return TableBuilder(line).build(); });
}

}  // namespace mlk::tree
