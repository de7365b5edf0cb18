#include "tools/mlkctl/Services.h"

namespace mlk::ctl {

namespace {

/// The failure, with when the method gives no answer, if that is what it is about.
Failure explained(const Failure& failure, const MethodDescription& description) {
    if (failure.status() != ExitStatus::NO_ANSWER || description.noAnswer.empty()) return failure;
    return {failure.status(), std::string(failure.what()) + "; there is none if " +
                                      std::string(description.noAnswer)};
}

}  // namespace

Services::Services() : mFinder([](const Interface& interface) { return interface.find(); }) {}

IBase& Services::object(const Interface& interface) {
    ::android::sp<IBase>& kept = mObjects[&interface];
    if (kept == nullptr) kept = mFinder(interface);
    if (kept == nullptr) {
        throw Failure(ExitStatus::UNREACHABLE,
                      std::string(interface.name) +
                              ": not registered, or it hangs; is the service running?");
    }
    return *kept;
}

std::string Services::call(const Interface& interface, const Method& method,
                           const std::vector<Argument>& arguments, Form form) {
    // A call that is wrong is told so whether there is a service or not.
    const BoundCall bound = bind(interface, method, arguments, form);
    IBase& target = object(interface);
    try {
        return bound(target);
    } catch (const Failure& failure) {
        if (failure.status() == ExitStatus::UNREACHABLE) mObjects.erase(&interface);
        throw about(interface, method, explained(failure, *method.description));
    }
}

}  // namespace mlk::ctl
