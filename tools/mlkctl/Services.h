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

/// The service's three objects as this process reaches them: each is looked up when it is first
/// needed and kept, so that many calls share a connection. Nothing that is asked of them takes
/// longer than a limit. For one thread.
class Services {
  public:
    /// How an object is looked up: a new proxy, or null. Called from any thread.
    using Finder = std::function<::android::sp<IBase>(const Interface&)>;

    /// Finds what is registered.
    Services();
    explicit Services(Finder finder) : mFinder(std::move(finder)) {}

    /// How long a look-up, and how long a call, may take; half a minute unless it is set.
    void setLimit(std::chrono::duration<double> limit) { mLimit = limit; }

    /// Looks all three up at once, within the limit. Gives why there is none of those that cannot
    /// be reached.
    std::map<const Interface*, Failure> findAll();

    /// What `question` gives, asked of the object of the interface on another thread. It must own
    /// what it refers to: a service that hangs leaves it behind. Throws what it throws, and Failure
    /// UNREACHABLE when there is no object, or no answer within the limit. An object that turns out
    /// to be dead, or hangs, is forgotten: the next call finds the one that has taken its place.
    /// The question itself is not asked again: nobody knows what it did.
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
    };

    /** The answer as it is printed, or why there is none. */
    using Result = std::variant<std::string, Failure>;

    using Receiver = std::function<void(Result&&)>;

    /**
     * Makes the calls in their order and hands over a result for each, in the same order. Each has
     * the limit; one that fails does not keep the rest from being made. Many calls cost less here
     * than in call(): the thread that makes them is waited for once for many. Throws what `receive`
     * throws.
     */
    void callAll(const std::vector<Request>& requests, const Receiver& receive);

    /// Calls a method with arguments of any number; throws as bind() and ask() do.
    std::string call(const Interface& interface, const Method& method,
                     const std::vector<Argument>& arguments, Form form);

    const Finder& finder() const { return mFinder; }

  private:
    size_t callSome(const std::vector<Request>& requests, size_t first, const Receiver& receive);
    void within(const Interface& interface, std::function<void()> work);
    ::android::sp<IBase> object(const Interface& interface);
    void askForNothing(const Interface& interface, std::function<void(IBase&)> question);

    Finder mFinder;
    std::chrono::duration<double> mLimit{30};
    std::map<const Interface*, ::android::sp<IBase>> mObjects;
    std::unique_ptr<Worker> mWorker;  // made when it is needed
};

}  // namespace mlk::ctl
