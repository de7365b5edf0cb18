#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "tools/mlkctl/Interface.h"
#include "tools/mlkctl/Worker.h"

namespace mlk::ctl {

/**
 * The service's three objects. Each is looked up at its first use and kept, so that many calls
 * share a connection. Every question ends within a time limit. For one thread.
 */
class Services {
  public:
    /** Looks an object up: returns a new proxy, or null. Called from any thread. */
    using Finder = std::function<::android::sp<IBase>(const Interface&)>;

    /** Looks objects up in the service manager. */
    Services();
    explicit Services(Finder finder) : mFinder(std::move(finder)) {}

    /** Sets how long a look-up and a call may take. The default is 30 seconds. */
    void setLimit(std::chrono::duration<double> limit) { mLimit = limit; }
    std::chrono::duration<double> limit() const { return mLimit; }

    /**
     * Looks all three up at the same time, within the limit. Returns the reasons why objects cannot
     * be reached.
     */
    std::map<const Interface*, Failure> findAll();

    /**
     * Calls `question` with the object of the interface on another thread, and returns its result.
     * The question must own what it refers to, because it is abandoned if the service hangs. Throws
     * what the question throws, and Failure UNREACHABLE, which names the interface, if there is no
     * object or no answer within the limit. An object that is dead or hangs is forgotten: the next
     * call finds its successor. The question is not asked again, because it may have had an effect.
     */
    template <typename Question>
    auto ask(const Interface& interface, Question question) {
        using Answer = std::invoke_result_t<Question, IBase&>;
        const auto answer = std::make_shared<std::optional<Answer>>();
        askForNothing(interface, [answer, question = std::move(question)](IBase& object) {
            *answer = question(object);
        });
        return std::move(**answer);
    }

    /** A call to be made, and of whom. The pointers must outlive the request. */
    struct Request {
        const Interface* interface;
        const Method* method;
        BoundCall call;
        std::string outside = {};  // outsideRanges() of its arguments
    };

    /** The answer as it is printed, or why it is missing. */
    using Result = std::variant<std::string, Failure>;

    using Receiver = std::function<void(Result&&)>;

    /**
     * Makes the calls in their order and hands over a result for each, in the same order. Each has
     * the limit; one that fails does not keep the rest from being made. Many calls cost less here
     * than in call(): the thread that makes them is waited for once for many. Throws what `receive`
     * throws.
     */
    void callAll(const std::vector<Request>& requests, const Receiver& receive);

    /** Calls a method; throws as bind() and ask() do. */
    std::string call(const Interface& interface, const Method& method,
                     const std::vector<Argument>& arguments, Form form);

    const Finder& finder() const { return mFinder; }

  private:
    /**
     * Forgets the object if its service died while nobody called it: the next call would fail
     * without having reached a service. Throws Failure if the service hangs.
     */
    void forgetIfDead(const Interface& interface);
    size_t callSome(const std::vector<Request>& requests, size_t first, const Receiver& receive);
    void within(std::function<void()> work);
    ::android::sp<IBase> object(const Interface& interface);
    void askForNothing(const Interface& interface, std::function<void(IBase&)> question);

    Finder mFinder;
    std::chrono::duration<double> mLimit{30};
    std::map<const Interface*, ::android::sp<IBase>> mObjects;
    std::unique_ptr<Worker> mWorker;  // made when it is needed
};

}  // namespace mlk::ctl
