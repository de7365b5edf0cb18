#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <typeindex>

namespace mlk::tree {

/**
 * Keeps what several rules need and one of them computes, one object of each type. Any thread may
 * ask; the first one computes while others that ask for the same type wait.
 */
class Memo {
  public:
    /**
     * The object of that type; `make` gives it at the first call. It may ask for other types, but
     * not in a circle.
     */
    template <typename Value, typename Make>
    const Value& get(const Make& make) const {
        Entry& entry = entryOf(typeid(Value));
        std::call_once(entry.once, [&] { entry.value = std::make_shared<Value>(make()); });
        return *static_cast<const Value*>(entry.value.get());
    }

  private:
    struct Entry {
        std::once_flag once;
        std::shared_ptr<void> value;
    };

    Entry& entryOf(std::type_index type) const {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mEntries[type];
    }

    mutable std::mutex mMutex;
    mutable std::map<std::type_index, Entry> mEntries;  // guarded by mMutex; its entries stay
};

}  // namespace mlk::tree
