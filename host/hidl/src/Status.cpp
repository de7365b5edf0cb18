#include <hidl/Status.h>

#include <log/log.h>

#include <cstring>
#include <ostream>

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware {

namespace {

struct Name {
    int32_t value;
    const char* text;
};

constexpr Name kExceptions[] = {
        {Status::EX_NONE, "EX_NONE"},
        {Status::EX_SECURITY, "EX_SECURITY"},
        {Status::EX_BAD_PARCELABLE, "EX_BAD_PARCELABLE"},
        {Status::EX_ILLEGAL_ARGUMENT, "EX_ILLEGAL_ARGUMENT"},
        {Status::EX_NULL_POINTER, "EX_NULL_POINTER"},
        {Status::EX_ILLEGAL_STATE, "EX_ILLEGAL_STATE"},
        {Status::EX_NETWORK_MAIN_THREAD, "EX_NETWORK_MAIN_THREAD"},
        {Status::EX_UNSUPPORTED_OPERATION, "EX_UNSUPPORTED_OPERATION"},
        {Status::EX_HAS_REPLY_HEADER, "EX_HAS_REPLY_HEADER"},
        {Status::EX_TRANSACTION_FAILED, "EX_TRANSACTION_FAILED"},
};

constexpr Name kErrors[] = {
        {OK, "OK"},
        {UNKNOWN_ERROR, "UNKNOWN_ERROR"},
        {NO_MEMORY, "NO_MEMORY"},
        {INVALID_OPERATION, "INVALID_OPERATION"},
        {BAD_VALUE, "BAD_VALUE"},
        {BAD_TYPE, "BAD_TYPE"},
        {NAME_NOT_FOUND, "NAME_NOT_FOUND"},
        {PERMISSION_DENIED, "PERMISSION_DENIED"},
        {NO_INIT, "NO_INIT"},
        {ALREADY_EXISTS, "ALREADY_EXISTS"},
        {DEAD_OBJECT, "DEAD_OBJECT"},
        {FAILED_TRANSACTION, "FAILED_TRANSACTION"},
        {BAD_INDEX, "BAD_INDEX"},
        {NOT_ENOUGH_DATA, "NOT_ENOUGH_DATA"},
        {WOULD_BLOCK, "WOULD_BLOCK"},
        {TIMED_OUT, "TIMED_OUT"},
        {UNKNOWN_TRANSACTION, "UNKNOWN_TRANSACTION"},
        {FDS_NOT_ALLOWED, "FDS_NOT_ALLOWED"},
        {UNEXPECTED_NULL, "UNEXPECTED_NULL"},
};

// Returns the name; null when the table does not have the value.
template <size_t N>
const char* nameIn(const Name (&names)[N], int32_t value) {
    for (const Name& name : names) {
        if (name.value == value) {
            return name.text;
        }
    }
    return nullptr;
}

std::string exceptionName(int32_t exception) {
    const char* const name = nameIn(kExceptions, exception);
    return name != nullptr ? name : std::to_string(exception);
}

// A status without a name is an errno.
std::string errorName(status_t error) {
    const char* const name = nameIn(kErrors, error);
    return name != nullptr ? name : std::to_string(error) + " " + strerror(-error);
}

}  // namespace

Status Status::fromStatusT(status_t status) {
    Status made;
    made.setFromStatusT(status);
    return made;
}

void Status::setFromStatusT(status_t status) {
    mException = status == OK ? EX_NONE : EX_TRANSACTION_FAILED;
    mError = status;
    mMessage.clear();
}

std::string Status::description() const {
    if (isOk()) {
        return "No error";
    }
    std::string text = "Status(" + exceptionName(mException) + "): '";
    if (mException == EX_TRANSACTION_FAILED) {
        text += errorName(mError) + ": ";
    }
    return text + mMessage + "'";
}

std::ostream& operator<<(std::ostream& stream, const Status& status) {
    return stream << status.description();
}

namespace details {

return_status& return_status::operator=(return_status&& other) noexcept {
    mStatus = std::move(other.mStatus);
    mChecked = other.mChecked;
    // The new owner of the outcome has to check it.
    other.mChecked = true;
    return *this;
}

return_status::~return_status() {
    if (!mChecked && !mStatus.isOk()) {
        ALOGW("a failed call was not looked at: %s", mStatus.description().c_str());
    }
}

void return_status::assertOk() const {
    if (isOk()) {
        return;
    }
    logAlwaysFatal(("a call that must not fail did: " + mStatus.description()).c_str());
}

void return_status::onValueRetrieval() const {
    if (isOk()) {
        return;
    }
    logAlwaysFatal(("the result of a failed call was taken: " + mStatus.description()).c_str());
}

}  // namespace details
}  // namespace android::hardware
