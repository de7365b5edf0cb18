#include "tools/mlktree/Sources.h"

#include <utility>

#include "tools/mlktree/FileText.h"

namespace mlk::tree {

namespace {

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

}  // namespace

const std::vector<std::string_view>& Sources::lines(const std::string& path) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto [file, isNew] = mFiles.try_emplace(path);
    if (isNew) {
        file->second.text = textOrNothing(mTree.host(path), kMostBytes);
        file->second.lines = linesOf(file->second.text);
    }
    return file->second.lines;
}

std::string_view Sources::line(const std::string& path, size_t number) const {
    const std::vector<std::string_view>& all = lines(path);
    return number >= 1 && number <= all.size() ? all[number - 1] : std::string_view();
}

bool Sources::endsInLineFeed(const std::string& path) const {
    (void)lines(path);
    const std::lock_guard<std::mutex> lock(mMutex);
    const std::string& text = mFiles.at(path).text;
    return text.empty() || text.back() == '\n';
}

}  // namespace mlk::tree
