#include "tools/mlktree/report/Packed.h"

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tools/common/Text.h"

namespace mlk::tree {

namespace {

constexpr int kLevel = 6;             // 9 takes three times as long for 2 % less
constexpr int kGzipWindow = 15 + 16;  // the largest window; 16 asks for the header of gzip
constexpr int kMemory = 9;

}  // namespace

std::string packed(std::string_view text) {
    z_stream stream{};
    if (deflateInit2(&stream, kLevel, Z_DEFLATED, kGzipWindow, kMemory, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
        throw std::runtime_error("the report cannot be compressed");
    }
    const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, deflateEnd);
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> piece(size_t{1} << 18U);
    int state = Z_OK;
    while (state == Z_OK) {
        if (stream.avail_in == 0 && !text.empty()) {
            // zlib counts in 32 bits.
            const size_t size = std::min<size_t>(text.size(), std::numeric_limits<int>::max());
            // zlib reads only, but its C interface of old does not say so.
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
            stream.avail_in = static_cast<uInt>(size);
            text.remove_prefix(size);
        }
        stream.next_out = piece.data();
        stream.avail_out = static_cast<uInt>(piece.size());
        state = deflate(&stream, text.empty() ? Z_FINISH : Z_NO_FLUSH);
        bytes.insert(bytes.end(), piece.data(), stream.next_out);
    }
    if (state != Z_STREAM_END) {
        throw std::runtime_error("the report cannot be compressed");
    }
    return base64(bytes.data(), bytes.size());
}

std::string inScript(std::string_view json) {
    std::string out;
    out.reserve(json.size());
    for (const char byte : json) {
        if (byte == '<') {
            out += "\\u003c";
        } else {
            out += byte;
        }
    }
    return out;
}

}  // namespace mlk::tree
