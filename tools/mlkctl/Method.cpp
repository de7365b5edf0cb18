#include "tools/mlkctl/Method.h"

namespace mlk::ctl {

void checkOutcome(const ::android::hardware::details::return_status& outcome, bool answered) {
    if (outcome.isDeadObject()) {
        throw Failure(ExitStatus::UNREACHABLE, "the service died during the call");
    }
    if (!outcome.isOk()) {
        throw Failure(ExitStatus::NO_ANSWER, "no answer: " + outcome.description());
    }
    if (!answered) {
        throw Failure(ExitStatus::NO_ANSWER, "no answer");
    }
}

}  // namespace mlk::ctl
