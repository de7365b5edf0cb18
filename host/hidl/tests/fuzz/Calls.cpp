#include "Calls.h"

#include <algorithm>
#include <new>

#include "host/testing/CallMethod.h"

namespace mlk::test {

namespace {

constexpr uint32_t kMostBytes = 20000;

// Uses every part of a value by formatting it.
template <typename Value>
void look(const Value& value) {
    using ::android::hardware::toString;
    (void)toString(value);
}

// Generated code aborts when it reads a union of unknown kind.
void look(const Choice& choice) {
    if (choice.getDiscriminator() <= Choice::hidl_discriminator::points) {
        (void)toString(choice);
    }
}

struct Look {
    template <typename... Values>
    void operator()(const Values&... values) const {
        (look(values), ...);
    }
};

template <typename Result>
void lookAt(const Return<Result>& result) {
    if (result.isOk()) {
        look(static_cast<Result>(result));
    }
}

void lookAt(const Return<sp<IListener>>& result) {
    if (!result.isOk()) {
        return;
    }
    const sp<IListener> listener = result;
    // Also calls the object that arrived; its server may be gone.
    if (listener != nullptr) {
        (void)listener->tell(1).isOk();
    }
}

// A method that answers through a callback.
template <typename Method>
std::function<void(IEverything&)> answering(Method method) {
    return [method](IEverything& object) {
        (void)testing::callWithDefaults(object, method, Look()).isOk();
    };
}

void callListeners(IEverything& object) try {
    const auto call = [](const hidl_vec<sp<IListener>>& listeners) {
        for (const sp<IListener>& each : listeners) {
            if (each != nullptr) {
                (void)each->tell(1).isOk();
            }
        }
    };
    (void)object.listeners({}, call).isOk();
} catch (const std::bad_alloc&) {
    // A reply that claims more interfaces than a vector may have.
}

}  // namespace

const std::vector<std::function<void(IEverything&)>>& calls() {
    using I = IEverything;
    static const std::vector<std::function<void(I&)>> kCalls = {
            answering(&I::scalars),
            answering(&I::colour),
            answering(&I::text),
            [](I& object) { lookAt(object.length("length")); },
            answering(&I::fd),
            [](I& object) { lookAt(object.sign({}, "sign")); },
            answering(&I::shared),
            answering(&I::matrix),
            answering(&I::names),
            answering(&I::nested),
            answering(&I::record),
            answering(&I::records),
            answering(&I::choice),
            answering(&I::handles),
            [](I& object) { lookAt(object.listen(nullptr, "listen")); },
            [](I& object) { lookAt(object.callKept("call")); },
            [](I& object) { lookAt(object.tellKept(1)); },
            [](I& object) { (void)object.dropKept().isOk(); },
            callListeners,
            [](I& object) { lookAt(object.passOn(nullptr)); },
            [](I& object) { lookAt(object.alive()); },
            answering(&I::poked),
            answering(&I::bytes),
            answering(&I::brokenHandle),
            answering(&I::interfaceChain),
            answering(&I::interfaceDescriptor),
            answering(&I::getHashChain),
            answering(&I::getDebugInfo),
            [](I& object) { (void)object.ping().isOk(); },
    };
    return kCalls;
}

Return<void> TameEverything::bytes(uint32_t n, bytes_cb answer) {
    return Everything::bytes(std::min(n, kMostBytes), std::move(answer));
}
Return<sp<IListener>> TameEverything::listen(const sp<IListener>& l, const hidl_string& s) {
    if (l == nullptr || !l->heard(s).isOk()) {
        return sp<IListener>();
    }
    return sp<IListener>(new Listener);
}
Return<void> TameEverything::silent(silent_cb answer) {
    answer("not silent");
    return {};
}
Return<void> TameEverything::twice(twice_cb answer) {
    answer("once");
    return {};
}

}  // namespace mlk::test
