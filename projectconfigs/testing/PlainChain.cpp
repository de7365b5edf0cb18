#include "projectconfigs/testing/PlainChain.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

namespace {

constexpr size_t kListLine = 255;

bool has(const std::string& line, const char* word) {
    return strstr(line.c_str(), word) != nullptr;
}

std::string textAfter(const std::string& line, const std::string& mark) {
    return line.substr(line.find(mark) + mark.size());
}

}  // namespace

uint32_t projectIdOf(const std::string& text) {
    char buffer[257] = {};
    for (size_t at = 0; at < text.size(); at += 256) {
        const std::string chunk = text.substr(at, 256);
        memcpy(buffer, chunk.data(), chunk.size());
        const char* const keyword = strstr(buffer, "PROJECT_ID");
        if (keyword != nullptr) {
            const char* const equals = strchr(keyword, '=');
            return equals != nullptr ? static_cast<uint32_t>(atoi(equals + 1)) : 0;
        }
    }
    return 0;
}

std::string boardIdOf(const std::string& text) {
    for (const std::string& line : linesOf(text, kListLine)) {
        if (has(line, "BOARD_ID") && has(line, "=")) {
            return textAfter(line, "=");
        }
    }
    return {};
}

Chain::Chain(std::string tvdata, std::string tvconfigs, std::string impdata)
    : mTvdata(std::move(tvdata)), mTvconfigs(std::move(tvconfigs)), mImpdata(std::move(impdata)) {}

void Chain::update(const std::string& customerPath, int projectId, const std::string& boardId) {
    const auto state = [this] {
        return std::tie(mItems, mProjectId, mMaxIdx, mCustomerId, mSystemPath, mProjectPath,
                        mBoardPath);
    };
    const std::tuple<Items, int, uint32_t, std::string, std::string, std::string, std::string>
            former = state();
    if (!readChain(customerPath, projectId, boardId) && mIsRead) {
        state() = former;
    }
    mIsRead = true;
}

bool Chain::readChain(const std::string& customerPath, int projectId, const std::string& boardId) {
    mItems.clear();
    mProjectId = projectId;
    for (const std::string& line : linesOf(contentOf(customerPath), kListLine)) {
        if (!has(line, "=")) {
            continue;
        }
        if (has(line, "CUSTOMER_ID")) {
            mCustomerId = cleaned(textAfter(line, "="));
        } else if (has(line, "SYS_INI")) {
            mSystemPath = patched(cleaned(textAfter(line, "=")));
        }
    }
    for (const std::string& line : linesOf(contentOf(mSystemPath), kListLine)) {
        if (!has(line, "=") || !has(line, "Model_")) {
            continue;
        }
        const int number = atoi(textAfter(line, "Model_").c_str());
        if (static_cast<uint32_t>(number) > mMaxIdx) {
            mMaxIdx = static_cast<uint32_t>(number);
        }
        if (number == projectId) {
            mProjectPath = patched(cleaned(textAfter(line, "=")));
        }
    }
    const bool hasProject = readProjectFile(mProjectPath);
    if (boardId == "DEFAULT_BOARD_ID") {
        mBoardPath = "";
        return hasProject;
    }
    if (!boardId.empty()) {
        mBoardPath = boardId;
    }
    mBoardPath = patched(cleaned(mBoardPath));
    return readProjectFile(mBoardPath) && hasProject;
}

bool Chain::readProjectFile(const std::string& path) {
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    if (type == std::filesystem::file_type::directory) {
        return false;
    }
    for (const auto& [name, value] : projectItems(contentOf(path))) {
        mItems[name] = patched(value);
    }
    return true;
}

void Chain::setInfo(const Items::key_type& name, const std::string& value) {
    const auto item = mItems.find(name);
    if (item != mItems.end()) {
        item->second = value;
    }
}

std::string Chain::patched(const std::string& value) const {
    if (value.find("/tvconfigs") == 0) {
        return mTvconfigs + value.substr(10);
    }
    if (value.find("/tvdata") == 0) {
        return mTvdata + value.substr(7);
    }
    if (value.find("/impdata") == 0) {
        return mImpdata + value.substr(8);
    }
    return value;
}

std::string Chain::dump() const {
    return "  Customer ID: " + mCustomerId + "\n  Project ID: " + std::to_string(mProjectId) +
           "\n  Project max index: " + std::to_string(mMaxIdx) +
           "\n  Sys ini file: " + mSystemPath + "\n  Project ini file: " + mProjectPath +
           "\n  Board ini file: " + mBoardPath + "\n" + dumpOf(mItems, "    ");
}

std::vector<std::string> Chain::iniList() const {
    std::vector<std::string> list;
    for (const std::string& line : linesOf(contentOf(mSystemPath), kListLine)) {
        if (!has(line, "Model_")) {
            continue;
        }
        std::string entry;
        for (const char c : has(line, "model/") ? textAfter(line, "model/") : line.substr(5)) {
            if (c != '"') {
                entry += c;
            }
        }
        list.push_back(entry);
    }
    return list;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain
