#include "tools/mlkctl/Interface.h"

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"

namespace mlk::ctl {

namespace {

void checkCount(const Method& method, size_t given) {
    const size_t wanted = method.call.words.size();
    if (given == wanted) {
        return;
    }
    std::string arguments = wanted == 0 ? "no argument" : "1 argument: " + synopsis(method);
    if (wanted > 1) {
        arguments = std::to_string(wanted) + " arguments: " + synopsis(method);
    }
    throw usage("it takes " + arguments + "; there " + (given == 1 ? "is " : "are ") +
                std::to_string(given));
}

std::vector<std::string_view> interfaceNames() {
    std::vector<std::string_view> names;
    for (const Interface* interface : interfaces()) {
        names.push_back(interface->name);
    }
    return names;
}

std::string listOfInterfaces() {
    std::string list;
    for (const std::string_view each : interfaceNames()) {
        list += (list.empty() ? "" : ", ") + std::string(each);
    }
    return list;
}

// The name without what other tools write with it: its package and an instance.
std::string_view bareName(std::string_view name) {
    const size_t package = name.rfind("::");
    const std::string_view bare =
            package == std::string_view::npos ? name : name.substr(package + 2);
    return bare.substr(0, bare.find('/'));
}

// "; did you mean X?" with the interface or the method that is near, or `otherwise`.
std::string meantBy(std::string_view word, const std::string& otherwise) {
    std::vector<std::string_view> names = interfaceNames();
    for (const Interface* interface : interfaces()) {
        names.push_back(interface->shortName);
        for (const Method& method : interface->methods) {
            names.push_back(method.name);
        }
    }
    return didYouMean(bareName(word), names, otherwise);
}

}  // namespace

const std::vector<const Interface*>& interfaces() {
    static const std::vector<const Interface*> all = {&projectInterface(), &tvInterface(),
                                                      &frameworkInterface()};
    return all;
}

const Interface* findInterface(std::string_view name) {
    for (const Interface* interface : interfaces()) {
        if (interface->name == name || interface->shortName == name) {
            return interface;
        }
    }
    return nullptr;
}

const Interface& interfaceOf(std::string_view name) {
    if (const Interface* found = findInterface(name)) {
        return *found;
    }
    throw usage("there is no interface " + excerpt(name) +
                didYouMean(bareName(name), interfaceNames(), "; there are " + listOfInterfaces()));
}

std::vector<MethodOf> methodsNamed(std::string_view name) {
    std::vector<MethodOf> found;
    for (const Interface* interface : interfaces()) {
        for (const Method& row : interface->methods) {
            if (row.name == name) {
                found.push_back({interface, &row});
            }
        }
    }
    return found;
}

MethodOf methodFrom(const std::vector<std::string>& words, std::string_view verb, size_t* used) {
    const std::string command = "mlkctl " + std::string(verb) + ' ';
    if (const Interface* interface = findInterface(words[0])) {
        if (words.size() < 2) {
            throw usage("METHOD is missing; " + command + words[0] + " --help lists what it has");
        }
        *used = 2;
        return {interface, &interface->method(words[1])};
    }
    const std::vector<MethodOf> named = methodsNamed(words[0]);
    *used = 1;
    if (named.size() == 1) {
        return named.front();
    }
    if (named.empty()) {
        throw usage("there is no interface or method " + excerpt(words[0]) +
                    meantBy(words[0], "; the interfaces are " + listOfInterfaces()));
    }
    std::string message = words[0] + " is a method of several interfaces; name one:";
    const char* separator = " ";
    for (const MethodOf& each : named) {
        message += separator + command + std::string(each.interface->shortName) + ' ' + words[0];
        separator = ", or ";
    }
    throw usage(message);
}

const Method& Interface::method(std::string_view methodName) const {
    for (const Method& row : methods) {
        if (row.name == methodName) {
            return row;
        }
    }
    std::string message = std::string(name) + " has no method " + excerpt(methodName);
    std::string meant(suggestion(methodName, methodNames()));
    // Some names differ between interfaces only in case, or not at all.
    const std::vector<MethodOf> elsewhere = methodsNamed(methodName);
    if (!elsewhere.empty()) {
        meant += (meant.empty() ? "" : ", or ") + std::string(elsewhere[0].interface->name) + ' ' +
                 std::string(methodName);
    }
    if (meant.empty()) {
        throw usage(message + "; mlkctl call " + std::string(name) + " --help lists what it has");
    }
    throw usage(message + "; did you mean " + meant + "?");
}

std::vector<std::string_view> Interface::methodNames() const {
    std::vector<std::string_view> names;
    for (const Method& row : methods) {
        names.push_back(row.name);
    }
    return names;
}

std::string synopsis(const Method& method) {
    std::string out;
    for (const Word& word : method.call.words) {
        out += (out.empty() ? "" : " ") + word.name;
    }
    return out;
}

std::string limits(const Method& method) {
    std::string out;
    for (const Word& word : method.call.words) {
        if (!word.argument->range.empty()) {
            out += (out.empty() ? "" : ", ") + word.name + " is " +
                   std::string(word.argument->range);
        }
    }
    return out;
}

std::string outsideRanges(const Method& method, const std::vector<Argument>& arguments) {
    std::string out;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string outside = arguments[i].outsideOf(method.call.words[i]);
        if (!outside.empty()) {
            out += (out.empty() ? "" : "; ") + outside;
        }
    }
    return out;
}

std::vector<Method> withArguments(std::vector<Method> methods) {
    for (Method& method : methods) {
        auto word = method.call.words.begin();
        for (const ArgumentDescription& argument : method.description->arguments) {
            // An item takes two words.
            for (int i = argument.type == "ProjectConfigKey" ? 2 : 1; i > 0; --i) {
                (word++)->argument = &argument;
            }
        }
    }
    return methods;
}

BoundCall bind(const Interface& interface, const Method& method,
               const std::vector<Argument>& arguments, Form form) {
    try {
        checkCount(method, arguments.size());
        if (form == Form::RAW && !method.call.hasBytes) {
            throw usage("it answers no bytes that could be printed raw");
        }
        return method.call.bind(method.call.words, arguments, form);
    } catch (const Failure& failure) {
        throw about(interface, method, failure);
    }
}

Failure about(const Interface& interface, const Failure& failure) {
    return {failure.status(), std::string(interface.name) + ": " + failure.what()};
}

Failure about(const Interface& interface, const Method& method, const Failure& failure) {
    return {failure.status(),
            std::string(interface.name) + ' ' + std::string(method.name) + ": " + failure.what()};
}

}  // namespace mlk::ctl
