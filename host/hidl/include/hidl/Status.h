// Status and Return: how a HIDL call ended, and what it gave.
#pragma once

#include <hidl/HidlInternal.h>
#include <utils/Errors.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <utility>

namespace android::hardware {

// How a call ended: well, or with an exception code and, for EX_TRANSACTION_FAILED, the error of
// the transport.
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

    // All went well.
    Status() = default;
    static Status ok() { return {}; }
    // EX_NONE for well; the message may be null.
    static Status fromExceptionCode(int32_t exception) { return {exception, OK, {}}; }
    static Status fromExceptionCode(int32_t exception, const char* message) {
        return {exception, OK, message == nullptr ? "" : message};
    }
    // OK for well, else EX_TRANSACTION_FAILED with that error.
    static Status fromStatusT(status_t status);

    // Puts the status of a transport operation here; OK leaves an all-well status.
    void setFromStatusT(status_t status);

    // The parts; transactionError is OK but for EX_TRANSACTION_FAILED, the message is never null.
    bool isOk() const { return mException == EX_NONE; }
    int32_t exceptionCode() const { return mException; }
    const char* exceptionMessage() const { return mMessage.c_str(); }
    status_t transactionError() const { return mException == EX_TRANSACTION_FAILED ? mError : OK; }

    // "No error", or the exception with its error, where it has one, and its message, as a device
    // words it: "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '",
    // "Status(EX_ILLEGAL_ARGUMENT): 'why'".
    std::string description() const;

  private:
    Status(int32_t exception, status_t error, std::string message)
        : mException(exception), mError(error), mMessage(std::move(message)) {}

    int32_t mException = EX_NONE;
    status_t mError = OK;
    std::string mMessage;
};

// Writes the description.
std::ostream& operator<<(std::ostream& stream, const Status& status);

template <typename T>
class Return;

namespace details {

// The part of Return that does not depend on the result's type. An outcome that failed and that
// nobody looked at is told as a warning when it goes. Not thread-safe.
class return_status {
  public:
    return_status() = default;
    return_status(const Status& status) : mStatus(status) {}
    return_status(return_status&& other) noexcept { *this = std::move(other); }
    return_status& operator=(return_status&& other) noexcept;
    return_status(const return_status&) = delete;
    return_status& operator=(const return_status&) = delete;
    ~return_status();

    // Whether the call was answered.
    bool isOk() const {
        mChecked = true;
        return mStatus.isOk();
    }
    // The object behind the proxy is gone; the proxy will never answer again.
    bool isDeadObject() const {
        mChecked = true;
        return mStatus.transactionError() == DEAD_OBJECT;
    }
    // As Status has it.
    std::string description() const {
        mChecked = true;
        return mStatus.description();
    }
    // Aborts the process when the call failed.
    void assertOk() const;

  protected:
    // Aborts the process when a result is taken from a call that gave none.
    void onValueRetrieval() const;

  private:
    Status mStatus;
    mutable bool mChecked = false;
};

}  // namespace details

// The outcome of a call that gives a T directly.
template <typename T>
class Return : public details::return_status {
  public:
    Return(const T& value) : mValue(value) {}
    Return(T&& value) : mValue(std::move(value)) {}
    Return(const Status& status) : return_status(status) {}
    // For a subclass's strong pointer given where a base's is expected.
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<const U&, T> &&
                                                      !std::is_base_of_v<return_status, U> &&
                                                      !std::is_same_v<U, Status>>>
    Return(const U& value) : mValue(value) {}
    Return(Return&&) noexcept = default;
    Return& operator=(Return&&) noexcept = default;

    // The result; aborts the process when the call failed: look at isOk() first.
    operator T() const {
        onValueRetrieval();
        return mValue;
    }
    // The result, or what is given when the call failed.
    T withDefault(T fallback) const { return isOk() ? mValue : fallback; }

  private:
    T mValue{};
};

// The outcome of a call that gives nothing, or gives it through a callback.
template <>
class Return<void> : public details::return_status {
  public:
    Return() = default;
    Return(const Status& status) : return_status(status) {}
    Return(Return&&) noexcept = default;
    Return& operator=(Return&&) noexcept = default;
};

// What an implementation returns from a void method that went well.
inline Return<void> Void() {
    return Return<void>();
}

}  // namespace android::hardware
