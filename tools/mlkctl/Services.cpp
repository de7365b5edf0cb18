#include "tools/mlkctl/Services.h"

#include <algorithm>
#include <optional>
#include <set>

#include "tools/mlkctl/HostFolders.h"
#include "tools/mlkctl/Pending.h"
#include "tools/mlkctl/Registry.h"

namespace mlk::ctl {

namespace {

using Clock = Worker::Clock;

// The reason why an interface has no object. A runtime that gives up on a hanging service returns
// no object either, but the service manager still has the name. It is asked until the deadline, but
// for half a second at least.
Failure noObject(const Interface& interface, Clock::time_point deadline) {
    const std::string name = "vendor.morlak.mlkconfigs@1.0::" + std::string(interface.name);
    const std::string instance = "default";
    const std::string shortName(interface.name);
    if (const std::optional<int> refusing = processRefusing(socketOf(interface.name))) {
        return {ExitStatus::UNREACHABLE, shortName + ": " + aboutRefusal(*refusing)};
    }
    constexpr std::chrono::milliseconds kLeast{500};
    const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    const auto registered = isRegistered(name, instance, std::max(left, kLeast));
    if (!registered) {
        return {ExitStatus::UNREACHABLE,
                shortName + ": not found, and the service manager does not answer"};
    }
    if (*registered) {
        return {ExitStatus::UNREACHABLE, shortName + ": registered, but it does not answer"};
    }
    return {ExitStatus::UNREACHABLE, shortName + ": not registered" +
                                             aboutSocket(socketOf(interface.name)) +
                                             "; is the service running?"};
}

std::string shownSeconds(std::chrono::duration<double> limit) {
    std::string text = std::to_string(limit.count());
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

// A service that had no time at all need not hang.
Failure tooLate(std::chrono::duration<double> limit) {
    return {ExitStatus::UNREACHABLE, "the service gave no answer within " + shownSeconds(limit) +
                                             " s" + (limit.count() > 0 ? "; it hangs" : "")};
}

Clock::time_point after(std::chrono::duration<double> limit) {
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(limit);
}

// The failure; if there was no answer, with the argument that is out of its range, else with the
// description of when the method gives no answer.
Failure explained(const Failure& failure, const Services::Request& request) {
    const std::string_view noAnswer = request.method->description->noAnswer;
    if (failure.status() != ExitStatus::NO_ANSWER || noAnswer.empty()) {
        return failure;
    }
    return {failure.status(),
            std::string(failure.what()) + "; " +
                    (request.outside.empty() ? "there is none if " + std::string(noAnswer)
                                             : request.outside)};
}

}  // namespace

Services::Services() : mFinder([](const Interface& interface) { return interface.find(); }) {}

void Services::within(std::function<void()> work) {
    if (mWorker == nullptr) {
        mWorker = std::make_unique<Worker>();
    }
    if (mWorker->run(std::move(work), mLimit)) {
        return;
    }
    mWorker = nullptr;
    throw tooLate(mLimit);
}

::android::sp<IBase> Services::object(const Interface& interface) {
    const auto kept = mObjects.find(&interface);
    if (kept != mObjects.end()) {
        return kept->second;
    }
    const auto deadline = after(mLimit);
    const auto found = std::make_shared<::android::sp<IBase>>();
    try {
        within([found, finder = mFinder, asked = &interface] { *found = finder(*asked); });
    } catch (const Failure& failure) {
        throw about(interface, failure);
    }
    if (*found == nullptr) {
        throw noObject(interface, deadline);
    }
    return mObjects[&interface] = *found;
}

void Services::askForNothing(const Interface& interface, std::function<void(IBase&)> question) {
    const ::android::sp<IBase> target = object(interface);
    try {
        within([target, question = std::move(question)] { question(*target); });
    } catch (const Failure& failure) {
        if (failure.status() == ExitStatus::UNREACHABLE) {
            mObjects.erase(&interface);
            throw about(interface, failure);
        }
        throw;
    }
}

std::map<const Interface*, Failure> Services::findAll() {
    const auto deadline = after(mLimit);
    std::vector<Pending<::android::sp<IBase>>> questions;
    for (const Interface* interface : interfaces()) {
        questions.emplace_back([finder = mFinder, interface] { return finder(*interface); });
    }
    std::map<const Interface*, Failure> failures;
    for (size_t i = 0; i < questions.size(); ++i) {
        const Interface* interface = interfaces()[i];
        const auto found = questions[i].waitUntil(deadline);
        if (found.has_value() && *found != nullptr) {
            mObjects[interface] = *found;
        } else {
            failures.emplace(interface, found.has_value() ? noObject(*interface, deadline)
                                                          : about(*interface, tooLate(mLimit)));
        }
    }
    return failures;
}

std::string Services::call(const Interface& interface, const Method& method,
                           const std::vector<Argument>& arguments, Form form) {
    Result result;
    BoundCall call = bind(interface, method, arguments, form);
    callAll({{&interface, &method, std::move(call), outsideRanges(method, arguments)}},
            [&result](Result&& given) { result = std::move(given); });
    if (const auto* failure = std::get_if<Failure>(&result)) {
        throw Failure(*failure);
    }
    return std::get<std::string>(std::move(result));
}

void Services::forgetIfDead(const Interface& interface) {
    const auto kept = mObjects.find(&interface);
    if (kept == mObjects.end()) {
        return;
    }
    const auto isAlive = std::make_shared<bool>(false);
    try {
        within([isAlive, target = kept->second] { *isAlive = target->ping().isOk(); });
    } catch (const Failure& failure) {
        mObjects.erase(kept);
        throw about(interface, failure);
    }
    if (!*isAlive) {
        mObjects.erase(kept);
    }
}

void Services::callAll(const std::vector<Request>& requests, const Receiver& receive) {
    std::set<const Interface*> looked;
    size_t done = 0;
    while (done < requests.size()) {
        const Interface& interface = *requests[done].interface;
        try {
            if (looked.insert(&interface).second) {
                forgetIfDead(interface);
            }
            (void)object(interface);
        } catch (const Failure& failure) {
            receive(failure);
            ++done;
            continue;
        }
        done += callSome(requests, done, receive);
    }
}

size_t Services::callSome(const std::vector<Request>& requests, size_t first,
                          const Receiver& receive) {
    // Shared with the thread, which may outlive this call. Holds the result of each piece that has
    // ended.
    struct Shared {
        std::vector<Result> results;
        size_t bytes = 0;
    };
    const auto shared = std::make_shared<Shared>();
    shared->results.resize(requests.size() - first);
    std::vector<Worker::Piece> pieces;
    for (size_t i = first; i < requests.size(); ++i) {
        const auto kept = mObjects.find(requests[i].interface);
        // An object that is not known yet is looked up when its call is the next, not before: a
        // call ahead of it may change which one it is.
        if (kept == mObjects.end()) {
            break;
        }
        pieces.emplace_back(
                [shared, target = kept->second, question = requests[i].call, index = i - first] {
                    // What is kept until all are done is bounded, but for the last answer.
                    constexpr size_t kMostBytes = size_t{64} * 1024;
                    try {
                        std::string text = question(*target);
                        shared->bytes += text.size();
                        shared->results[index] = std::move(text);
                    } catch (const Failure& failure) {
                        shared->results[index] = failure;
                        return failure.status() != ExitStatus::UNREACHABLE;
                    }
                    return shared->bytes < kMostBytes;
                });
    }
    if (mWorker == nullptr) {
        mWorker = std::make_unique<Worker>();
    }
    const Worker::Outcome outcome = mWorker->runAll(std::move(pieces), mLimit);
    const auto fail = [&](const Request& request, const Failure& failure) {
        if (failure.status() == ExitStatus::UNREACHABLE) {
            mObjects.erase(request.interface);
        }
        receive(about(*request.interface, *request.method, explained(failure, request)));
    };
    for (size_t i = 0; i < outcome.ended; ++i) {
        Result& result = shared->results[i];
        if (const auto* failure = std::get_if<Failure>(&result)) {
            fail(requests[first + i], *failure);
        } else {
            receive(std::move(result));
        }
    }
    if (!outcome.hangs) {
        return outcome.ended;
    }
    mWorker = nullptr;
    fail(requests[first + outcome.ended], tooLate(mLimit));
    return outcome.ended + 1;
}

}  // namespace mlk::ctl
