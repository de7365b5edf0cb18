#include "tools/mlktree/tests/ReadReport.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include "tools/common/Text.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

std::string fromBase64(std::string_view text) {
    constexpr std::string_view kDigits =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char digit : text) {
        const size_t value = kDigits.find(digit);
        if (value == std::string_view::npos) {
            continue;
        }
        bits = bits << 6U | static_cast<unsigned>(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>(bits >> static_cast<unsigned>(count) & 0xffU);
        }
    }
    return bytes;
}

// Bytes that are no UTF-8 are hidden: text() restores them.
json parsed(const std::string& text) {
    std::string plain;
    return json::parse(hideByteEscapes(text, &plain) ? plain : text);
}

}  // namespace

std::string unpacked(std::string_view text) {
    std::string bytes = fromBase64(text);
    z_stream stream{};
    EXPECT_EQ(inflateInit2(&stream, 15 + 16), Z_OK);
    stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::string out;
    int state = Z_OK;
    while (state == Z_OK) {
        char piece[65536];
        stream.next_out = reinterpret_cast<Bytef*>(piece);
        stream.avail_out = sizeof piece;
        state = inflate(&stream, Z_NO_FLUSH);
        out.append(piece, sizeof piece - stream.avail_out);
    }
    EXPECT_EQ(state, Z_STREAM_END);
    EXPECT_EQ(stream.avail_in, 0U);
    inflateEnd(&stream);
    return out;
}

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
    const size_t from = text.find(begin) + begin.size();
    return text.substr(from, text.find(end, from) - from);
}

ReadReport::ReadReport(const std::string& tree) {
    const Outcome outcome = runMlktree({"report", tree, "-o", "-"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    page = outcome.out;
    summaryText = between(page, "id=\"summary\">", "</script>");
    summary = parsed(summaryText);
    data = parsed(unpacked(between(page, "id=\"data\">", "</script>")));
}

std::string ReadReport::text(const json& id) const {
    return restoreBytes(data["texts"][id.get<size_t>()].get<std::string>());
}

std::string ReadReport::pathOf(const json& id) const {
    return id.get<int64_t>() < 0 ? "" : text(data["files"][id.get<size_t>()]["path"]);
}

const json& ReadReport::file(const std::string& path) const {
    for (const json& one : data["files"]) {
        if (text(one["path"]) == path) {
            return one;
        }
    }
    static const json kNone;
    ADD_FAILURE() << "no file " << path;
    return kNone;
}

std::string ReadReport::fileOf(const std::string& value) const {
    const json& named = data["named"];
    for (size_t i = 0; i < named.size(); i += 2) {
        if (text(named[i]) == value) {
            return pathOf(named[i + 1]);
        }
    }
    return "";
}

std::vector<int64_t> ReadReport::column(const json& differences) {
    std::vector<int64_t> numbers;
    int64_t sum = 0;
    for (const json& one : differences) {
        numbers.push_back(sum += one.get<int64_t>());
    }
    return numbers;
}

std::map<std::string, std::string> ReadReport::itemsOf(size_t set) const {
    const json& answers = data["answers"];
    const auto pieces = static_cast<size_t>(column(answers["sets"]["pieces"])[set]);
    std::map<std::string, std::string> items;
    for (const char* const layer : {"model", "board", "country"}) {
        const int64_t number = column(answers["pieces"][layer])[pieces];
        if (number < 0) {
            continue;
        }
        const json& piece = answers["items"][static_cast<size_t>(number)];
        const auto names = column(piece["name"]);
        const auto values = column(piece["value"]);
        const auto files = column(piece["file"]);
        const auto lines = column(piece["line"]);
        const auto country = static_cast<size_t>(column(answers["sets"]["country"])[set]);
        for (size_t i = 0; i < names.size(); ++i) {
            json file = files[i];
            json line = lines[i];
            if (files[i] == -2) {
                const json& places = answers["placesByCountry"][static_cast<size_t>(lines[i])];
                file = places[2 * country];
                line = places[2 * country + 1];
            }
            const auto name = static_cast<size_t>(names[i]);
            items[text(answers["names"][2 * name]) + " " + text(answers["names"][2 * name + 1])] =
                    text(values[i]) + " " + pathOf(file) + ":" + line.dump();
        }
    }
    return items;
}

}  // namespace mlk::tree
