#pragma once

#include <string_view>
#include <vector>

namespace mlk::ctl {

/** The script that teaches a shell to complete mlkctl. */
struct CompletionScript {
    std::string_view shell;
    std::string_view text;
};

/** The scripts of all shells that are known. Each needs only its shell. */
const std::vector<CompletionScript>& completionScripts();

}  // namespace mlk::ctl
