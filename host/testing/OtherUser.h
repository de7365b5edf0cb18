#pragma once

#include <functional>
#include <string>

namespace mlk::testing {

/// Runs the function in a child process that is not root: as the user 65534 when this one is root,
/// else as the same user. Gives what it returned; false, too, when it did not return. `folder` is a
/// TempDir's, which only root can enter before.
bool asOtherUser(const std::string& folder, const std::function<bool()>& function);

}  // namespace mlk::testing
