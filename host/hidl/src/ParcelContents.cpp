#include "ParcelContents.h"

#include <array>
#include <utility>

namespace android::hardware {

namespace {

// Large enough for the numbers of nearly every call.
constexpr size_t kUsualSize = 128;
// Memory beyond this size is not kept for the next parcel.
constexpr size_t kKeptBytes = size_t{16} * 1024;
// A call made from within a method needs two more parcels.
constexpr size_t kMostSpares = 4;

// A thread's spares are destroyed before static objects, whose destructors may still make calls.
// This flag has no destructor, so it can be read even then.
thread_local bool tSparesAreGone = false;

}  // namespace

Parcel::Contents::Contents() {
    data.reserve(kUsualSize);
}

// The emptied contents of destroyed parcels.
struct Parcel::Spares {
    std::array<std::unique_ptr<Contents>, kMostSpares> spares;
    size_t count = 0;

    ~Spares() { tSparesAreGone = true; }
    static thread_local Spares own;
};
thread_local Parcel::Spares Parcel::Spares::own;

std::unique_ptr<Parcel::Contents> Parcel::Contents::take() {
    if (tSparesAreGone) {
        return std::make_unique<Contents>();
    }
    Spares& own = Spares::own;
    if (own.count == 0) {
        return std::make_unique<Contents>();
    }
    return std::move(own.spares[--own.count]);
}

void Parcel::Contents::give(std::unique_ptr<Contents> contents) {
    // Clearing may destroy an object that destroys parcels of its own, so check the spares only
    // afterwards.
    if (contents->arrived) {
        const transport::IncomingMessage gone = std::move(contents->message);
        contents->arrived = false;
    }
    contents->objects.clear();
    contents->data.clear();
    if (tSparesAreGone) {
        return;
    }
    Spares& own = Spares::own;
    if (own.count == kMostSpares || contents->data.capacity() > kKeptBytes ||
        contents->objects.capacity() * sizeof(Object) > kKeptBytes) {
        return;
    }
    own.spares[own.count++] = std::move(contents);
}

}  // namespace android::hardware
