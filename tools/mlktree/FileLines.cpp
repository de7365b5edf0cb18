#include "tools/mlktree/FileLines.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "common/TextHash.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// Whether the last of several lines of one name counts; else the first does.
bool lastCounts(FileFormat format) {
    return format == FileFormat::PROJECT || format == FileFormat::CUSTOMER ||
           format == FileFormat::SYSTEM;
}

}  // namespace

std::string_view nameOf(FileFormat format) {
    const auto* const row = vendor::morlak::mlkconfigs::V1_0::implementation::formatRow(format);
    return row != nullptr ? row->name : "file";
}

bool isIdentity(FileFormat format) {
    return format == FileFormat::PROJECT_ID || format == FileFormat::BOARD_ID ||
           format == FileFormat::COUNTRY_ID;
}

bool isXml(FileFormat format) {
    return format == FileFormat::TV_SYSTEMS || format == FileFormat::COUNTRY_MAP ||
           format == FileFormat::CHANNEL_MAP;
}

bool FileLines::isUnreadable() const {
    return std::any_of(mProblems.begin(), mProblems.end(), [](const Problem& problem) {
        return product::isWholeFileLost(problem.kind);
    });
}

const ReadLine* FileLines::find(std::string_view section, std::string_view key) const {
    const uint32_t number = mItems.find(hashOf(section, key), [&](uint32_t line) {
        return mLines[line].section == section && mLines[line].key == key;
    });
    return number != product::HashIndex::kNone ? &mLines[number] : nullptr;
}

void FileLines::onLine(const ReadLine& line) {
    ReadLine& kept = mLines.emplace_back(line);
    kept.path = {};
    kept.text = keep(line.text);
    // Most keys and values are a part of the line.
    const auto part = [&](std::string_view text) {
        const bool isInside = text.data() >= line.text.data() &&
                              text.data() + text.size() <= line.text.data() + line.text.size();
        return isInside && !line.text.empty()
                       ? kept.text.substr(static_cast<size_t>(text.data() - line.text.data()),
                                          text.size())
                       : keep(text);
    };
    kept.owner = keep(line.owner);
    kept.section = line.section == mLastSection ? mLastSection : keep(line.section);
    mLastSection = kept.section;
    kept.key = part(line.key);
    kept.value = part(line.value);
}

void FileLines::onProblem(const ReadProblem& problem) {
    mProblems.push_back({problem.line, problem.kind, std::string(problem.detail)});
}

void FileLines::finish(bool exists, std::vector<HidlFreqListItem> channels) {
    mExists = exists;
    mChannels = std::move(channels);
    mItems.expect(mLines.size());
    mCounts.resize(mLines.size());
    for (uint32_t i = 0; i < mLines.size(); ++i) {
        const ReadLine& line = mLines[i];
        if (line.use == LineUse::SECTION) {
            mSections.try_emplace(line.owner.empty() ? line.section : line.owner, &line);
        }
        if (line.use != LineUse::ITEM) {
            continue;
        }
        uint32_t& counts = mItems.findOrAdd(hashOf(line.section, line.key), [&](uint32_t other) {
            return mLines[other].section == line.section && mLines[other].key == line.key;
        });
        const uint32_t former = counts;
        if (former == product::HashIndex::kNone || lastCounts(mFormat)) {
            mCounts[i] = true;
            counts = i;
        }
        if (former != product::HashIndex::kNone) {
            const uint32_t outdone = counts == i ? former : i;
            mCounts[outdone] = false;
            mOutdone.push_back(&mLines[outdone]);
        }
    }
}

uint32_t FileLines::hashOf(std::string_view section, std::string_view key) {
    return product::shortHash(product::hashText(key, product::hashText(section, 0)));
}

std::string_view FileLines::keep(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    char* const copy = mTexts.allocate(text.size());
    std::memcpy(copy, text.data(), text.size());
    return {copy, text.size()};
}

}  // namespace mlk::tree
