#include "tools/mlkctl/BatchLine.h"

#include <nlohmann/json.hpp>

#include <iterator>
#include <limits>

#include "host/text/Utf8.h"
#include "tools/common/Text.h"
#include "tools/mlkctl/Failure.h"

namespace mlk::ctl {

namespace {

using Json = nlohmann::json;

constexpr const char* kForm = R"(a line is ["INTERFACE","METHOD",ARGUMENT...])";

// Takes the values of one array from the parser. It builds no tree and refuses nesting, so a deep
// line costs nothing. Every function returns whether the parser goes on.
class Values : public nlohmann::json_sax<Json> {
  public:
    explicit Values(bool hasHiddenBytes) : mHasHiddenBytes(hasHiddenBytes) {}

    std::vector<Argument> values;
    std::string problem;  // why the parser stopped

    bool null() override { return add(Argument::ofOther("null")); }
    bool boolean(bool value) override { return add(Argument::ofFlag(value)); }
    bool number_integer(number_integer_t value) override { return add(Argument::ofNumber(value)); }
    bool number_unsigned(number_unsigned_t value) override {
        if (value > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) {
            return add(Argument::ofOther(std::to_string(value)));
        }
        return add(Argument::ofNumber(static_cast<int64_t>(value)));
    }
    bool number_float(number_float_t, const string_t& text) override {
        return add(Argument::ofOther(text));
    }
    bool string(string_t& text) override {
        return add(Argument::ofText(mHasHiddenBytes ? restoreBytes(text) : std::move(text)));
    }
    bool start_array(size_t) override {
        if (mInArray) {
            return refuse("an argument is a text, a number, true or false, not an array");
        }
        mInArray = true;
        return true;
    }
    bool end_array() override { return true; }
    bool start_object(size_t) override {
        return refuse(mInArray ? "an argument is a text, a number, true or false, not an object"
                               : kForm);
    }
    bool end_object() override { return true; }
    bool key(string_t&) override { return true; }
    bool binary(binary_t&) override { return refuse(kForm); }
    bool parse_error(size_t position, const std::string&, const Json::exception&) override {
        return refuse("column " + std::to_string(position) + ": not JSON; " + kForm);
    }

  private:
    bool add(Argument value) {
        if (!mInArray) {
            return refuse(kForm);
        }
        values.push_back(std::move(value));
        return true;
    }
    bool refuse(const std::string& why) {
        problem = why;
        return false;
    }

    const bool mHasHiddenBytes;
    bool mInArray = false;
};

// The name at this place of the array.
std::string nameFrom(const std::vector<Argument>& values, size_t index) {
    if (index >= values.size() || !values[index].isText()) {
        throw usage(kForm);
    }
    return values[index].toText({"NAME", Word::Kind::TEXT});
}

}  // namespace

BatchLine parseBatchLine(std::string_view line) {
    // The parser takes a NUL for the end of its input and skips a byte order mark.
    const size_t nul = line.find('\0');
    if (nul != std::string_view::npos || line.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        const size_t column = nul != std::string_view::npos ? nul + 1 : 1;
        throw usage("column " + std::to_string(column) + ": not JSON; " + kForm);
    }
    std::string plain;
    const bool hidden = hideByteEscapes(line, &plain);
    Values taken(hidden);
    if (!Json::sax_parse(hidden ? std::string_view(plain) : line, &taken)) {
        throw usage(taken.problem);
    }
    BatchLine result{nameFrom(taken.values, 0), nameFrom(taken.values, 1), {}};
    result.arguments.assign(std::make_move_iterator(taken.values.begin() + 2),
                            std::make_move_iterator(taken.values.end()));
    return result;
}

}  // namespace mlk::ctl
