#pragma once

#include <functional>
#include <string>

namespace mlk::testing {

/**
 * Runs the function in a child process that is not root: as the user 65534 when this process is
 * root, otherwise as the same user. Returns the function's result; false when it did not return.
 * `folder` is a TempDir, which is made accessible to the child.
 */
bool asOtherUser(const std::string& folder, const std::function<bool()>& function);

}  // namespace mlk::testing
