// Values of system properties: any content of the property files, and what the services make of it.

#include <cutils/properties.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>

#include "frameworkconfigs/FrameworkItems.h"
#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "frameworkconfigs/testing/GetterRows.h"
#include "host/properties/PropertyStore.h"
#include "host/testing/HostSet.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "tvconfigs/MlkTvConfigs.h"
#include "tvconfigs/TvConfigItems.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;
using android::sp;
using vendor::morlak::mlkconfigs::V1_0::ConfigType;
using vendor::morlak::mlkconfigs::V1_0::OptionalBool;
using vendor::morlak::mlkconfigs::V1_0::OptionalInt32;

namespace {

constexpr const char* kKey = "vendor.mlk.fuzz";
constexpr const char* kDtvSystem = "persist.vendor.mlk.tv.dtv_system";

std::vector<std::string> keys() {
    std::vector<std::string> result = {kKey};
    for (const FrameworkItemRow& row : kFrameworkItems) {
        if (row.property != nullptr) {
            result.emplace_back(row.property);
        }
    }
    for (const TvSystemRow& row : kTvSystems) {
        result.emplace_back(row.key);
    }
    for (const TvFlagRow& row : kTvFlags) {
        result.emplace_back(row.key);
    }
    return result;
}

class Set {
  public:
    // One file under all names: what is written into it is the value of all properties.
    Set() {
        fuzzing::writeFile(mSet.dir().path("value"), "");
        for (const std::string& key : keys()) {
            link(mSet.dir().path("value").c_str(), pathOf(key).c_str());
        }
    }
    void fill(const std::string& value) const {
        // The services set this one: it has become a file of its own.
        unlink(pathOf(kDtvSystem).c_str());
        link(mSet.dir().path("value").c_str(), pathOf(kDtvSystem).c_str());
        fuzzing::writeFile(mSet.dir().path("value"), value);
    }

  private:
    std::string pathOf(const std::string& key) const {
        return mSet.dir().path("data/property/" + key);
    }
    mlk::testing::HostSet mSet;
};

// The platform's two readings of a value.
int8_t asBool(const std::string& value, int8_t byDefault) {
    for (const char* word : {"1", "true", "y", "yes", "on"}) {
        if (value == word) {
            return 1;
        }
    }
    for (const char* word : {"0", "false", "n", "no", "off"}) {
        if (value == word) {
            return 0;
        }
    }
    return byDefault;
}

template <typename Number>
Number asNumber(const std::string& value, Number byDefault) {
    char* end = nullptr;
    errno = 0;
    const intmax_t number = strtoimax(value.c_str(), &end, 0);
    if (errno == ERANGE || end == value.c_str() || number < std::numeric_limits<Number>::min() ||
        number > std::numeric_limits<Number>::max()) {
        return byDefault;
    }
    return static_cast<Number>(number);
}

void comparePlatform(const std::string& value) {
    char text[PROPERTY_VALUE_MAX] = {};
    const int length = property_get(kKey, text, "default");
    const std::string expected = value.empty() ? "default" : value;
    fuzzing::requireEqual("a property", text, expected);
    fuzzing::require(length == static_cast<int>(expected.size()), "its length");
    for (const int8_t byDefault : {int8_t{0}, int8_t{1}}) {
        fuzzing::require(property_get_bool(kKey, byDefault) == asBool(value, byDefault),
                         "a property as a bool");
        fuzzing::require(property_get_int32(kKey, byDefault) == asNumber<int32_t>(value, byDefault),
                         "a property as a number");
        fuzzing::require(property_get_int64(kKey, byDefault) == asNumber<int64_t>(value, byDefault),
                         "a property as a large number");
    }
}

void expectAnswer(const OptionalBool& answer, bool expected, const char* name) {
    fuzzing::require(answer.success && answer.value == expected, name);
}

// The answer of a getter of the framework service, as getterRows prints it.
std::string expectedOf(FrameworkItemKind kind, const std::string& value) {
    switch (kind) {
        case FrameworkItemKind::FLAG:
            return asBool(value, 0) != 0 ? "true" : "false";
        case FrameworkItemKind::NUMBER:
            return std::to_string(asNumber<int32_t>(value, 0));
        case FrameworkItemKind::INVERTED:
            return asNumber<int32_t>(value, 0) == 0 ? "true" : "false";
        case FrameworkItemKind::TEXT:
            break;
    }
    return "\"\"";
}

void compareFramework(const std::string& value) {
    const sp<MlkFrameworkConfigs> service = new MlkFrameworkConfigs;
    fuzzing::require(getterRows().size() == std::size(kFrameworkItems), "a row for each item");
    for (const GetterRow& row : getterRows()) {
        const FrameworkItemKind kind = kFrameworkItems[frameworkItem(row.name)].kind;
        fuzzing::requireEqual(row.name, row.get(*service), expectedOf(kind, value));
    }
    fuzzing::require(!::testing::Test::HasFailure(), "each getter answers once, with success");
}

void compareTv(const std::string& value) {
    const sp<MlkTvConfigs> service = new MlkTvConfigs("");
    // All masters have the same value.
    const bool expected = value == "true" || atoi(value.c_str()) > 0;
    for (const TvFlagRow& row : kTvFlags) {
        service->getFlag(static_cast<ConfigType>(row.type), [&](const OptionalBool& answer) {
            expectAnswer(answer, expected, row.name);
        });
    }
    const auto expectSystem = [&](const OptionalInt32& answer) {
        fuzzing::require(answer.success && answer.value == atoi(value.c_str()), "a system");
    };
    service->getAtvSystem(expectSystem);
    service->getDtvSystem(expectSystem);
    char written[PROPERTY_VALUE_MAX] = {};
    property_get(kDtvSystem, written, "");
    fuzzing::requireEqual("the digital system", written, std::to_string(atoi(value.c_str())));
}

bool isKey(const std::string& text) {
    const char* const characters =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.@:-";
    return !text.empty() && text.size() <= 255 && text[0] != '.' && text[text.size() - 1] != '.' &&
           text.find("..") == std::string::npos &&
           text.find_first_not_of(characters) == std::string::npos;
}

// The text as a value, and as a key, in its own store.
void compareStore(const std::string& text) {
    static const mlk::testing::TempDir folder;
    const mlk::host::PropertyStore store(folder.path());
    const bool fits = text.size() < PROPERTY_VALUE_MAX;
    fuzzing::require(store.set("a", text) == fits, "a value that fits can be set");
    fuzzing::requireEqual("a property that was set", store.get("a").value_or("none"),
                          fits ? text : "none");
    unlink(folder.path("a").c_str());
    fuzzing::require(store.set(text, "x") == isKey(text), "only a key can be set");
    const std::vector<std::string> keys = store.keys();
    fuzzing::require(keys.size() == (isKey(text) ? 1 : 0), "and nothing else is");
    if (!keys.empty()) {
        fuzzing::requireEqual("the key", keys[0], text);
        unlink(folder.path(text).c_str());
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Set set;
    const std::string content(reinterpret_cast<const char*>(data), size);
    set.fill(content);
    // Another program may have written the file: its text ends at a NUL or after 91 bytes.
    const std::string value = content.substr(0, 91).c_str();
    comparePlatform(value);
    compareFramework(value);
    compareTv(value);
    if (content.find('\0') == std::string::npos) {
        compareStore(content);
    }
    return 0;
}
