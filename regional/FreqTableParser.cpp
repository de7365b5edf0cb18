#define LOG_TAG "MlkProjectConfigs"

#include "regional/FreqTableParser.h"

#include <log/log.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "common/Decimal.h"
#include "common/FileLimits.h"
#include "common/Paths.h"
#include "regional/LogLines.h"
#include "regional/Modulations.h"
#include "regional/PlanColumns.h"
#include "regional/RegionalData.h"
#include "regional/RegionalNames.h"
#include "regional/TextFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr int32_t kDefaultBandwidth = 6000000;
constexpr std::string_view kComment = "//";

// Removes and returns the next piece: up to its line feed, the limit or the end. A NUL byte ends
// the returned text, as in a fixed buffer.
std::string_view takePiece(std::string_view& text) {
    std::string_view piece = text.substr(0, kPlanPieceSize);
    const size_t lineFeed = piece.find('\n');
    if (lineFeed != std::string_view::npos) {
        piece = piece.substr(0, lineFeed + 1);
    }
    text.remove_prefix(piece.size());
    return piece.substr(0, piece.find('\0'));
}

bool isComment(std::string_view piece) {
    return piece.substr(0, kComment.size()) == kComment;
}

// Tells what became of a piece, and moves `read` to the next one. `taken` is the piece as the file
// has it, `rest` what follows in the file.
void tellPiece(ReadObserver& observer, std::string_view piece, std::string_view taken,
               std::string_view rest, bool isChannel, ReadLine& read) {
    const bool endsLine = taken.back() == '\n';
    std::string_view columns = isComment(piece) ? "" : piece;
    read.key = nextColumn(columns);
    read.use = LineUse::IGNORED;
    if (isChannel) {
        read.use = LineUse::ITEM;
    } else if (read.key.empty()) {
        read.use = LineUse::NOTHING;
    }
    read.text = piece.substr(0, piece.find('\n'));
    read.isCut = !endsLine && !rest.empty() && rest.front() != '\n';
    read.hasNul = piece.size() < taken.size();
    observer.onLine(read);
    read.column = endsLine ? 1 : read.column + taken.size();
    read.number += endsLine ? 1 : 0;
}

std::string_view folderOf(FreqTableType type) {
    switch (type) {
        case FreqTableType::DTV_ANTENNA:
        case FreqTableType::DTV_CABLE:
            return kDtvPlansFolder;
        case FreqTableType::ATV_ANTENNA:
        case FreqTableType::ATV_CABLE:
            return kAtvPlansFolder;
    }
    return "";  // a client may send any number
}

// Builds the path of a plan in that folder. True if it exists.
bool findPlan(const std::string& folder, FreqTableType type, const std::string& name,
              std::string& path) {
    path = folder;
    path += folderOf(type);
    path += name;
    return pathExists(path);
}

}  // namespace

bool FreqTableParser::GetTableList(const std::string& directory, _tv_country country,
                                   FreqTableType type, AtscCableType cableType,
                                   std::vector<HidlFreqListItem>& items) {
    std::string name;
    // Of the same lookup as the name: another call may use another folder by now.
    std::string folder;
    const bool known = mData.plans.GetFreqTableNameByCountry(directory, country, type, cableType,
                                                             name, &folder);
    if (!known || name.empty()) {
        ALOGD("GetTableList sucess %d freqName: %s", known ? 1 : 0, name.c_str());
        return false;
    }
    ALOGD("GetTableList country index %d type %d, freqName: %s", static_cast<int>(country),
          static_cast<int>(type), name.c_str());
    std::string path;
    const bool exists = findPlan(folder, type, name, path);
    LOG_PRI(exists ? ANDROID_LOG_DEBUG : ANDROID_LOG_ERROR, LOG_TAG,
            "GetTableList full freq path,sucess %d: %s", exists ? 1 : 0, path.c_str());
    if (!exists) {
        return false;
    }
    const bool parsed = ParseFreqTable(path, items);
    ALOGD("GetTableList get freq ,sucess %d: size: %d", parsed ? 1 : 0,
          static_cast<int>(items.size()));
    return parsed;
}

bool FreqTableParser::GetFreqTablePath(FreqTableType type, const std::string& name,
                                       std::string& path) {
    return !name.empty() && findPlan(mData.plans.GetTvConfigPath(), type, name, path);
}

bool FreqTableParser::ParseFreqTable(const std::string& path,
                                     std::vector<HidlFreqListItem>& items) {
    if (path.empty()) {
        return false;
    }
    std::string text;
    if (readTextFile(path, text, mData.observer) != ReadResult::DONE) {
        ALOGE("[%s %d] fd is null, %s", __func__, log_line::kTableUnreadable, path.c_str());
        return false;
    }
    items.clear();
    ReadLine read;
    read.path = path;
    read.number = 1;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view unread = rest;
        const std::string_view piece = takePiece(rest);
        const std::string_view taken = unread.substr(0, unread.size() - rest.size());
        const size_t before = items.size();
        if (piece.size() >= 2 && !isComment(piece)) {
            const HidlFreqListItem item = parsePiece(piece);
            if (item.frequency >= 1) {
                items.push_back(item);
            }
        }
        if (mData.observer != nullptr) {
            tellPiece(*mData.observer, piece, taken, rest, items.size() > before, read);
        }
    }
    return true;
}

NameTable FreqTableParser::knownModulations() {
    return NameTable(kModulations);
}

HidlFreqListItem FreqTableParser::parsePiece(std::string_view piece) {
    HidlFreqListItem item{};
    std::string_view column = nextColumn(piece);
    if (column.empty()) {
        return item;
    }
    item.channel = static_cast<uint16_t>(parseDecimal(column));
    if (column = nextColumn(piece); column.empty()) {
        return item;
    }
    const int32_t bandwidth = parseDecimal(column);
    item.bandwidth = bandwidth != 0 ? bandwidth : kDefaultBandwidth;
    item.frequency = parseDecimal(nextColumn(piece));
    if (column = nextColumn(piece); column.empty()) {
        return item;
    }
    if (const std::optional<int32_t> modulation = mData.modulations.find(column)) {
        item.modulation = *modulation;
    } else {
        const size_t length = std::min(column.size(), item.label.size() - 1);
        std::copy_n(column.begin(), length, item.label.data());
    }
    if (column = nextColumn(piece); !column.empty()) {
        item.modulation = mData.modulations.valueOf(column);
    }
    return item;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
