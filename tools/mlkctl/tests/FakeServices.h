#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace mlk::ctl {

namespace V1_0 = ::vendor::morlak::mlkconfigs::V1_0;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

/** The answers of the fakes by type, for every method with an answer of that type, and the calls.
 */
struct Script {
    Script() = default;
    ~Script();
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;

    bool success = true;
    bool flag = true;
    int32_t number = 42;
    /** A call with its arguments: {"getConfig", "[LiveTV]", "TvConfig"}. */
    using Words = std::vector<std::string>;

    /** Answers to single calls, in place of those below. */
    std::map<Words, std::string> textOf;
    std::map<Words, int32_t> numberOf;
    std::map<Words, std::vector<V1_0::ConfigKeyValue>> itemsOf;
    std::map<Words, std::vector<uint8_t>> bytesOf;

    /** Called with each call before it is answered. */
    std::function<void(const Words&)> onCall;

    /** Texts are answered with this; when empty, with the method's name, unless emptyTexts. */
    std::string text;
    bool emptyTexts = false;
    std::vector<hidl_string> texts = {"one", "two"};
    std::vector<uint32_t> numbers = {1, 4000000000U};
    std::vector<V1_0::ConfigKeyValue> items = {{"key", "value"}};
    std::vector<V1_0::HidlFreqListItem> channels;
    std::vector<uint8_t> bytes = {0, 1, 255};
    /** Shared memory holds this; empty memory has no descriptor. */
    std::string memory;
    std::string dump = "a dump\n";
    /** Methods that do not call their callback. */
    std::set<std::string> silent;
    /** Methods that fail with EX_ILLEGAL_STATE, and those that fail like dead objects. */
    std::set<std::string> failing;
    std::set<std::string> dying;
    /** The message of the failing ones. */
    std::string failure = "not now";

    /** A call with this text as its last argument ends the process. */
    std::string exitFile;

    /** Calls so far: the method's name, then its arguments. */
    std::vector<std::vector<std::string>> calls;

    std::mutex mutex;  // Around calls and memoryFile.
    int memoryFile = -1;
};

V1_0::OptionalBool answerFrom(Script& script, const Script::Words& call, V1_0::OptionalBool*);
V1_0::OptionalInt32 answerFrom(Script& script, const Script::Words& call, V1_0::OptionalInt32*);
V1_0::OptionalString answerFrom(Script& script, const Script::Words& call, V1_0::OptionalString*);
hidl_vec<hidl_string> answerFrom(Script& script, const Script::Words& call, hidl_vec<hidl_string>*);
hidl_vec<uint32_t> answerFrom(Script& script, const Script::Words& call, hidl_vec<uint32_t>*);
hidl_vec<uint8_t> answerFrom(Script& script, const Script::Words& call, hidl_vec<uint8_t>*);
hidl_vec<V1_0::ConfigKeyValue> answerFrom(Script& script, const Script::Words& call,
                                          hidl_vec<V1_0::ConfigKeyValue>*);
hidl_vec<V1_0::HidlFreqListItem> answerFrom(Script& script, const Script::Words& call,
                                            hidl_vec<V1_0::HidlFreqListItem>*);
hidl_memory answerFrom(Script& script, const Script::Words& call, hidl_memory*);

::android::sp<V1_0::IMlkProjectConfigs> makeFakeProject(Script& script);
::android::sp<V1_0::IMlkTvConfigs> makeFakeTv(Script& script);
::android::sp<V1_0::IMlkFrameworkConfigs> makeFakeFramework(Script& script);

}  // namespace mlk::ctl
