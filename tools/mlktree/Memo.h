#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <typeindex>

namespace mlk::tree {

/**
 * Keeps what several rules need and one of them computes, one object of each type. Any thread may
 * ask; the first one computes while others wait.
 */
class Memo {
  public:
    /** The object of that type; `make` gives it at the first call and must not ask for another. */
    template <typename Value, typename Make>
    const Value& get(const Make& make) const {
        const std::lock_guard<std::mutex> lock(mMutex);
        std::shared_ptr<void>& value = mValues[std::type_index(typeid(Value))];
        if (value == nullptr) {
            value = std::make_shared<Value>(make());
        }
        return *static_cast<const Value*>(value.get());
    }

  private:
    mutable std::mutex mMutex;
    mutable std::map<std::type_index, std::shared_ptr<void>> mValues;  // guarded by mMutex
};

}  // namespace mlk::tree
