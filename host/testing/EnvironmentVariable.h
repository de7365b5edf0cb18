#pragma once

#include <optional>
#include <string>

namespace mlk::testing {

/**
 * An environment variable of this process, which started programs inherit, with a value for one
 * test. The destructor restores what it was before. Changing the environment is not thread-safe:
 * create the object before any threads and destroy it after them.
 */
class EnvironmentVariable {
  public:
    /** Sets the variable, or removes it if `value` is null. `name` must outlive the object. */
    EnvironmentVariable(const char* name, const char* value);
    EnvironmentVariable(const char* name, const std::string& value);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

    /** Sets the variable again, or removes it if `value` is null. */
    void set(const char* value) const;
    void set(const std::string& value) const { set(value.c_str()); }

  private:
    const char* mName;
    std::optional<std::string> mFormer;
};

}  // namespace mlk::testing
