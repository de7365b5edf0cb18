#include "tools/mlkctl/Hints.h"

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <chrono>
#include <optional>

#include "tools/common/Text.h"
#include "tools/mlkctl/Ask.h"
#include "tools/mlkctl/Items.h"
#include "tools/mlkctl/Mounts.h"
#include "tools/mlkctl/Registry.h"

namespace mlk::ctl {

namespace {

using V1_0::IMlkProjectConfigs;

constexpr const char* kAllocator = "android.hidl.allocator@1.0::IAllocator";
constexpr const char* kSharedMemory = "ashmem";

void hintAtPath(const std::string& given, Environment& environment) {
    std::string path = given;
    if (path.size() > 1 && path.front() == '"' && path.back() == '"') {
        path = path.substr(1, path.size() - 2);
    }
    if (!beginsWithPartition(path)) {
        return;
    }
    const Mounts mounts = mountsOf(environment.services);
    const std::optional<Mounted> meant = mounts.find(path);
    if (!meant || meant->path == path) {
        return;
    }
    const bool exists = environment.services.ask(projectInterface(), [meant](IBase& object) {
        return ask(object, &IMlkProjectConfigs::isFileExist, hidl_string(meant->path)).value == 1;
    });
    environment.note("paths are taken as they are, and " + meant->name + " is mounted at " +
                     meant->mountPoint + "; " +
                     (exists ? "did you mean " + meant->path + "?"
                             : meant->path + " does not exist either"));
}

void hintAtItem(const Method& method, const std::vector<Argument>& arguments,
                Environment& environment) {
    const auto category = sectionWord(method);
    if (!category) {
        return;
    }
    const DumpedSet set = parseDump(dumpOf(environment.services));
    const std::vector<DumpedItem>* items = itemsAnsweredBy(method, set);
    if (items == nullptr) {
        return;
    }
    const std::vector<Word>& words = method.call.words;
    std::optional<std::string> key;
    if (words.size() > *category + 1 && words[*category + 1].name == "KEY") {
        key = arguments[*category + 1].toText(words[*category + 1]);
    }
    const std::string missing =
            missingItem(*items, arguments[*category].toText(words[*category]), key);
    // Without a near name the empty answer says it all.
    if (missing.find("did you mean") != std::string::npos) {
        environment.note(missing);
    }
}

void hintAtEmptyAnswer(const Method& method, const std::vector<Argument>& arguments,
                       Environment& environment) {
    hintAtItem(method, arguments, environment);
    for (size_t i = 0; i < arguments.size(); ++i) {
        const Word& word = method.call.words[i];
        if (word.kind == Word::Kind::TEXT) {
            hintAtPath(arguments[i].toText(word), environment);
        }
    }
    const bool isDelivery = method.description->resultType == "memory";
    const auto limit =
            std::chrono::duration_cast<std::chrono::milliseconds>(environment.services.limit());
    if (isDelivery && isRegistered(kAllocator, kSharedMemory, limit) == false) {
        environment.note("no allocator of shared memory runs, so every delivery is empty: " +
                         std::string(kAllocator) + '/' + kSharedMemory + " is not registered");
    }
}

}  // namespace

bool isEmptyAnswer(const std::string& answer, Form form) {
    if (form == Form::RAW) {
        return answer.empty();
    }
    for (const char* empty :
         {R"({"success":true,"value":""})", R"({"success":true,"value":0})",
          R"({"success":true,"value":"0"})", R"({"success":true,"value":false})",
          R"({"size":0,"base64":""})", "[]"}) {
        if (answer == empty) {
            return true;
        }
    }
    return answer.rfind(R"({"success":false,)", 0) == 0;
}

std::string callWithSection(Services& services, const Interface& interface, const Method& method,
                            std::vector<Argument>* arguments, Form form) {
    std::string answer = services.call(interface, method, *arguments, form);
    const auto category = sectionWord(method);
    if (!category || !isEmptyAnswer(answer, form)) {
        return answer;
    }
    const std::string section = (*arguments)[*category].toText(method.call.words[*category]);
    if (!lacksBrackets(section) || !itemsOf(services, section).empty()) {
        return answer;
    }
    std::vector<Argument> bracketed = *arguments;
    bracketed[*category] = Argument::ofText('[' + section + ']');
    std::string second = services.call(interface, method, bracketed, form);
    if (isEmptyAnswer(second, form)) {
        return answer;
    }
    *arguments = std::move(bracketed);
    return second;
}

void hint(const Method& method, const std::vector<Argument>& arguments, const std::string& answer,
          Form form, Environment& environment) {
    const std::string outside = outsideRanges(method, arguments);
    if (!outside.empty()) {
        environment.note(outside);
    }
    if (!isEmptyAnswer(answer, form)) {
        return;
    }
    try {
        hintAtEmptyAnswer(method, arguments, environment);
    } catch (const Failure&) {
        // The call was answered. A service that goes now leaves the answer without a hint.
    }
}

}  // namespace mlk::ctl
