// Status and Return: how a HIDL call ended, and its result.
#pragma once

#include <hidl/HidlInternal.h>
#include <utils/Errors.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <utility>

namespace android::hardware {

/**
 * The outcome of a call: success, or an exception code and, for EX_TRANSACTION_FAILED, the
 * transport's error.
 */
class Status {
  public:
    enum Exception : int32_t {
        EX_NONE = 0,
        EX_SECURITY = -1,
        EX_BAD_PARCELABLE = -2,
        EX_ILLEGAL_ARGUMENT = -3,
        EX_NULL_POINTER = -4,
        EX_ILLEGAL_STATE = -5,
        EX_NETWORK_MAIN_THREAD = -6,
        EX_UNSUPPORTED_OPERATION = -7,
        EX_HAS_REPLY_HEADER = -128,
        EX_TRANSACTION_FAILED = -129,
    };

    /** Success. */
    Status() = default;
    static Status ok() { return {}; }
    /** EX_NONE is success. The message may be null. */
    static Status fromExceptionCode(int32_t exception) { return {exception, OK, {}}; }
    static Status fromExceptionCode(int32_t exception, const char* message) {
        return {exception, OK, message == nullptr ? "" : message};
    }
    /** OK is success; any other status becomes EX_TRANSACTION_FAILED with that error. */
    static Status fromStatusT(status_t status);

    /** Sets the outcome to the status of a transport operation; OK means success. */
    void setFromStatusT(status_t status);

    /**
     * The parts. transactionError is OK unless the exception is EX_TRANSACTION_FAILED; the message
     * is never null.
     */
    bool isOk() const { return mException == EX_NONE; }
    int32_t exceptionCode() const { return mException; }
    const char* exceptionMessage() const { return mMessage.c_str(); }
    status_t transactionError() const { return mException == EX_TRANSACTION_FAILED ? mError : OK; }

    /**
     * "No error", or the exception with its error, if it has one, and its message, in a device's
     * words: "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '", "Status(EX_ILLEGAL_ARGUMENT): 'why'".
     */
    std::string description() const;

  private:
    Status(int32_t exception, status_t error, std::string message)
        : mException(exception), mError(error), mMessage(std::move(message)) {}

    int32_t mException = EX_NONE;
    status_t mError = OK;
    std::string mMessage;
};

/** Writes the description. */
std::ostream& operator<<(std::ostream& stream, const Status& status);

template <typename T>
class Return;

namespace details {

/**
 * The part of Return that does not depend on the type of the result. Logs a warning when a failed
 * outcome is destroyed unchecked. Not thread-safe.
 */
class return_status {
  public:
    return_status() = default;
    return_status(const Status& status) : mStatus(status) {}
    return_status(return_status&& other) noexcept { *this = std::move(other); }
    return_status& operator=(return_status&& other) noexcept;
    return_status(const return_status&) = delete;
    return_status& operator=(const return_status&) = delete;
    ~return_status();

    /** Whether the call was answered. */
    bool isOk() const {
        mChecked = true;
        return mStatus.isOk();
    }
    /** Whether the proxy's object is gone; the proxy will never answer again. */
    bool isDeadObject() const {
        mChecked = true;
        return mStatus.transactionError() == DEAD_OBJECT;
    }
    /** See Status::description. */
    std::string description() const {
        mChecked = true;
        return mStatus.description();
    }
    /** Aborts the process when the call failed. */
    void assertOk() const;

  protected:
    /** Aborts the process when a result is taken from a failed call. */
    void onValueRetrieval() const;

  private:
    Status mStatus;
    mutable bool mChecked = false;
};

}  // namespace details

/** The outcome of a call that returns a T directly. */
template <typename T>
class Return : public details::return_status {
  public:
    Return(const T& value) : mValue(value) {}
    Return(T&& value) : mValue(std::move(value)) {}
    Return(const Status& status) : return_status(status) {}
    /** Converts a strong pointer to a subclass into one to its base. */
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<const U&, T> &&
                                                      !std::is_base_of_v<return_status, U> &&
                                                      !std::is_same_v<U, Status>>>
    Return(const U& value) : mValue(value) {}
    Return(Return&&) noexcept = default;
    Return& operator=(Return&&) noexcept = default;

    /** Returns the result. Aborts the process when the call failed: check isOk() first. */
    operator T() const {
        onValueRetrieval();
        return mValue;
    }
    /** Returns the result, or the fallback when the call failed. */
    T withDefault(T fallback) const { return isOk() ? mValue : fallback; }

  private:
    T mValue{};
};

/** The outcome of a call that returns nothing, or answers through a callback. */
template <>
class Return<void> : public details::return_status {
  public:
    Return() = default;
    Return(const Status& status) : return_status(status) {}
    Return(Return&&) noexcept = default;
    Return& operator=(Return&&) noexcept = default;
};

/** What the implementation of a void method returns on success. */
inline Return<void> Void() {
    return Return<void>();
}

}  // namespace android::hardware
