#include <cutils/properties.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include "tools/common/Json.h"
#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlkctl/HostFolders.h"
#include "tools/mlkctl/PropertyList.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl prop - the system properties of this set

Usage: mlkctl prop list [--json]
       mlkctl prop get KEY
       mlkctl prop set KEY VALUE

Reads and sets system properties, from which the service takes switches and settings. Properties
belong to the set, not to the service, which need not run. On a host they are files below
$MLK_ROOT/data/property.

Words after list, get or set are taken as they are, -1 and --foo included. A key is letters,
digits and "_.@:-"; a "." stands between other characters. A key has at most 255 bytes, a value
at most 91. A key that begins with "ro." is set once. Many switches are read by the service when it
starts; a change is seen then.

Options:
  --json      list: one JSON object instead of lines
  -h, --help  this text

Output:
  list  a line KEY=VALUE for each property, in ascending order of the keys; control characters and
        bytes that are not UTF-8 are escaped. With --json: {"KEY":"VALUE",...}
  get   the value and a newline; an empty line for a property that does not exist, which is the
        same as an empty one. On a terminal it is escaped as by list; a program gets its bytes
  set   nothing

Exit status:
  0  done
  1  the property cannot be set, or the set has no property to list
  2  the command line is wrong; or, on a host, get or set found that MLK_ROOT is no set: it has
     neither tvconfigs/ nor data/property/

Examples:
  mlkctl prop list | grep mlk
  mlkctl prop set persist.vendor.mlk.forcestr true
)";

ExitStatus list(const std::vector<std::string>& words, Environment& environment) {
    Output& output = environment.output;
    const bool json = words.size() == 1 && words[0] == "--json";
    if (!words.empty() && !json) {
        throw usage("prop list takes --json or nothing");
    }
    JsonObject object;
    const Properties properties = allProperties();
    for (const auto& [key, value] : properties) {
        if (json) {
            object.text(key, value);
        } else {
            output.line(printable(key) + '=' + printable(value));
        }
    }
    if (json) {
        output.line(object.str());
    }
    if (properties.empty()) {
        const std::string where = aboutProperties();
        environment.note("there are no properties" + (where.empty() ? "" : ": " + where));
        return ExitStatus::UNREACHABLE;
    }
    return ExitStatus::ANSWERED;
}

// Ends a command on a folder that is no set, which would be taken for an empty one.
void refuseOtherFolders() {
    const std::string missing = aboutMissingSet();
    if (!missing.empty()) {
        throw usage(missing);
    }
}

void requireKey(const std::string& text) {
    constexpr const char* kCharacters =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.@:-";
    if (text.empty() || text.find_first_not_of(kCharacters) != std::string::npos) {
        throw usage(excerpt(text) + R"( is no KEY: that is letters, digits and "_.@:-")");
    }
    if (text.front() == '.' || text.back() == '.' || text.find("..") != std::string::npos) {
        throw usage(excerpt(text) +
                    R"( is no KEY: it has a "." at its beginning or end, or two in a row)");
    }
    // On a host a key is the name of a file.
    if (text.size() > NAME_MAX) {
        throw usage("KEY has at most " + std::to_string(NAME_MAX) + " bytes; there are " +
                    std::to_string(text.size()));
    }
}

void get(const std::vector<std::string>& words, Output& output) {
    if (words.size() != 1) {
        throw usage("prop get takes one argument: KEY");
    }
    requireKey(words[0]);
    refuseOtherFolders();
    std::array<char, PROPERTY_VALUE_MAX> value{};
    property_get(words[0].c_str(), value.data(), "");
    output.line(output.isTerminal() ? printable(value.data()) : value.data());
}

// The most probable reason why a property could not be set. The store's interface gives no reason.
std::string reason(const std::string& key, int error) {
    const Properties properties = allProperties();
    const bool exists = std::any_of(properties.begin(), properties.end(),
                                    [&](const auto& each) { return each.first == key; });
    if (key.rfind("ro.", 0) == 0 && exists) {
        return "it is set already, and is set once";
    }
    return error == 0 ? "the store refuses it" : strerror(error);
}

void set(const std::vector<std::string>& words) {
    if (words.size() != 2) {
        throw usage("prop set takes two arguments: KEY VALUE");
    }
    requireKey(words[0]);
    const std::string& value = words[1];
    if (value.size() >= PROPERTY_VALUE_MAX) {
        throw usage("VALUE has at most " + std::to_string(PROPERTY_VALUE_MAX - 1) +
                    " bytes; there are " + std::to_string(value.size()));
    }
    refuseOtherFolders();
    errno = 0;
    if (property_set(words[0].c_str(), value.c_str()) != 0) {
        const int error = errno;
        const std::string file = propertyFile(words[0]);
        throw Failure(ExitStatus::UNREACHABLE, "cannot set " + excerpt(words[0]) + ": " +
                                                       (file.empty() ? "" : file + ": ") +
                                                       reason(words[0], error));
    }
}

class PropVerb : public Verb {
  public:
    std::string_view name() const override { return "prop"; }
    std::string help() const override { return kHelp; }
    bool takesWords() const override { return true; }
    Candidates candidates(const Completing& at) override {
        if (at.before.empty()) {
            return {{"list", "all properties"}, {"get", "a value"}, {"set", "set a value"}};
        }
        if (at.before.size() > 1) {
            return {};
        }
        if (at.before[0] == "list") {
            return {{"--json"}};
        }
        Candidates keys;
        for (const auto& [key, value] : allProperties()) {
            keys.push_back({key, value});
        }
        return keys;
    }

    ExitStatus run(const std::vector<std::string>& words, Environment& environment) override {
        if (words.empty()) {
            throw usage("prop takes list, get KEY or set KEY VALUE");
        }
        const std::vector<std::string> rest(words.begin() + 1, words.end());
        if (words[0] == "list") {
            return list(rest, environment);
        }
        if (words[0] == "get") {
            get(rest, environment.output);
        } else if (words[0] == "set") {
            set(rest);
        } else {
            throw usage("there is no prop " + excerpt(words[0]) +
                        didYouMean(words[0], {"list", "get", "set"},
                                   "; there are list, get KEY and set KEY VALUE"));
        }
        return ExitStatus::ANSWERED;
    }
};

}  // namespace

std::unique_ptr<Verb> makePropVerb() {
    return std::make_unique<PropVerb>();
}

}  // namespace mlk::ctl
