#include "tools/mlkctl/Parameter.h"

#include <string_view>

namespace mlk::ctl {

using ::android::hardware::hidl_string;
using ::vendor::morlak::mlkconfigs::V1_0::ProjectConfigKey;

namespace {

// Turns "cableType" into a placeholder as manuals write it: "CABLE_TYPE".
std::string placeholder(std::string_view name) {
    std::string out;
    char last = '\0';
    for (const char letter : name) {
        const bool isCapital = letter >= 'A' && letter <= 'Z';
        const bool afterSmall = last >= 'a' && last <= 'z';
        if (isCapital && afterSmall) {
            out += '_';
        }
        out += letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
        last = letter;
    }
    return out;
}

}  // namespace

std::string ArgumentReader::text() {
    const size_t index = mNext++;
    return mArguments[index].toText(mWords[index]);
}

bool ArgumentReader::flag() {
    const size_t index = mNext++;
    return mArguments[index].toFlag(mWords[index]);
}

int64_t ArgumentReader::number(int64_t least, int64_t most) {
    const size_t index = mNext++;
    return mArguments[index].toNumber(mWords[index], least, most);
}

void describe(Type<bool>, const Parameter& parameter, std::vector<Word>* words) {
    words->push_back({placeholder(parameter.name), Word::Kind::FLAG});
}

void describe(Type<int32_t>, const Parameter& parameter, std::vector<Word>* words) {
    words->push_back({placeholder(parameter.name), Word::Kind::NUMBER, parameter.names});
}

void describe(Type<hidl_string>, const Parameter& parameter, std::vector<Word>* words) {
    words->push_back({placeholder(parameter.name), Word::Kind::TEXT});
}

void describe(Type<ProjectConfigKey>, const Parameter&, std::vector<Word>* words) {
    words->push_back({"CATEGORY", Word::Kind::TEXT});
    words->push_back({"KEY", Word::Kind::TEXT});
}

void describeEnumeration(const Parameter& parameter, NumberNames enumerators,
                         std::vector<Word>* words) {
    words->push_back({placeholder(parameter.name), Word::Kind::ENUMERATOR, std::move(enumerators)});
}

void read(ArgumentReader& reader, bool* value) {
    *value = reader.flag();
}

void read(ArgumentReader& reader, int32_t* value) {
    *value = static_cast<int32_t>(reader.number(std::numeric_limits<int32_t>::min(),
                                                std::numeric_limits<int32_t>::max()));
}

void read(ArgumentReader& reader, hidl_string* value) {
    *value = reader.text();
}

void read(ArgumentReader& reader, ProjectConfigKey* value) {
    read(reader, &value->category);
    read(reader, &value->key);
}

}  // namespace mlk::ctl
