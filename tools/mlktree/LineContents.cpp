#include "tools/mlktree/LineContents.h"

#include <utility>

#include "common/TextHash.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

uint32_t hashOf(const ReadLine& line) {
    return product::shortHash(product::hashText(line.text, product::hashText(line.section, 0)));
}

bool isAlike(const ReadLine& one, const ReadLine& other) {
    return one.use == other.use && one.column == other.column && one.isCut == other.isCut &&
           one.hasNul == other.hasNul && one.text == other.text && one.section == other.section &&
           one.key == other.key && one.value == other.value;
}

}  // namespace

void LineContents::add(FileLines& file) {
    if (isXml(file.format())) {
        return;
    }
    const std::vector<ReadLine>& lines = file.lines();
    std::vector<uint32_t> numbers;
    numbers.reserve(lines.size());
    for (const ReadLine& line : lines) {
        numbers.push_back(hashOf(line));
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    for (size_t i = 0; i < lines.size(); ++i) {
        uint32_t& known = mNumbers.findOrAdd(numbers[i], [&](uint32_t other) {
            return mContents[other].format == file.format() &&
                   isAlike(*mContents[other].line, lines[i]);
        });
        if (known == product::HashIndex::kNone) {
            known = static_cast<uint32_t>(mContents.size());
            mContents.push_back({file.format(), &lines[i]});
        }
        numbers[i] = known;
    }
    file.setContents(std::move(numbers));
}

}  // namespace mlk::tree
