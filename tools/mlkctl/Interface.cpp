#include "tools/mlkctl/Interface.h"

#include "tools/mlkctl/Suggest.h"
#include "tools/mlkctl/Text.h"

namespace mlk::ctl {

namespace {

// Another interface that has a method of exactly this name: some names differ between interfaces
// only in case, or not at all.
std::string_view ownerOf(std::string_view methodName) {
    for (const Interface* interface : interfaces()) {
        for (const Method& row : interface->methods) {
            if (row.name == methodName) {
                return interface->name;
            }
        }
    }
    return {};
}

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

}  // namespace

const std::vector<const Interface*>& interfaces() {
    static const std::vector<const Interface*> all = {&projectInterface(), &tvInterface(),
                                                      &frameworkInterface()};
    return all;
}

const Interface& interfaceOf(std::string_view name) {
    std::vector<std::string_view> names;
    for (const Interface* interface : interfaces()) {
        if (interface->name == name) {
            return *interface;
        }
        names.push_back(interface->name);
    }
    std::string list;
    for (const std::string_view each : names) {
        list += (list.empty() ? "" : ", ") + std::string(each);
    }
    // Other tools write the name with its package or with an instance.
    const size_t package = name.rfind("::");
    const std::string_view bare =
            package == std::string_view::npos ? name : name.substr(package + 2);
    throw usage("there is no interface " + excerpt(name) +
                didYouMean(bare.substr(0, bare.find('/')), names, "; there are " + list));
}

const Method& Interface::method(std::string_view methodName) const {
    for (const Method& row : methods) {
        if (row.name == methodName) {
            return row;
        }
    }
    std::string message = std::string(name) + " has no method " + excerpt(methodName);
    std::string meant(suggestion(methodName, methodNames()));
    const std::string_view owner = ownerOf(methodName);
    if (!owner.empty()) {
        meant +=
                (meant.empty() ? "" : ", or ") + std::string(owner) + ' ' + std::string(methodName);
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
    size_t word = 0;
    for (const ArgumentDescription& argument : method.description->arguments) {
        if (!argument.range.empty()) {
            out += (out.empty() ? "" : ", ") + method.call.words[word].name + " is " +
                   std::string(argument.range);
        }
        // An item takes two words.
        word += argument.type == "ProjectConfigKey" ? 2 : 1;
    }
    return out;
}

BoundCall bind(const Interface& interface, const Method& method,
               const std::vector<Argument>& arguments, Form form) {
    try {
        checkCount(method, arguments.size());
        if (form == Form::RAW && !method.call.hasBytes) {
            throw usage("it answers no bytes that could be printed raw");
        }
        return method.call.bind(arguments, form);
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
