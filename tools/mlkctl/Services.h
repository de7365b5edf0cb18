#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tools/mlkctl/Interface.h"

namespace mlk::ctl {

/// The service's three objects as this process reaches them: each is looked up when it is first
/// needed and kept, so that many calls share a connection. For one thread.
class Services {
  public:
    /// How an object is looked up: a new proxy, or null. Called from any thread.
    using Finder = std::function<::android::sp<IBase>(const Interface&)>;

    /// Finds what is registered.
    Services();
    explicit Services(Finder finder) : mFinder(std::move(finder)) {}

    /// The object of an interface; throws Failure UNREACHABLE when there is none.
    IBase& object(const Interface& interface);

    /// The same by its type: `of<IMlkTvConfigs>(tvInterface())`.
    template <typename I>
    I& of(const Interface& interface) {
        return static_cast<I&>(object(interface));
    }

    /// Calls a method with arguments of any number; throws as bind() and BoundCall do. An object
    /// that turns out to be dead is forgotten: it stays dead, but the next call finds the one that
    /// has taken its place. The call itself is not made again: nobody knows whether it was done.
    std::string call(const Interface& interface, const Method& method,
                     const std::vector<Argument>& arguments, Form form);

    const Finder& finder() const { return mFinder; }

  private:
    Finder mFinder;
    std::map<const Interface*, ::android::sp<IBase>> mObjects;
};

}  // namespace mlk::ctl
