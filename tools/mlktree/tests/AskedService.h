#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

/** The real service on a set of a test, and questions to it: one client asks all of them. */
class AskedService {
  public:
    /** Starts the service and waits for it. */
    explicit AskedService(const testing::HostSet& set);

    /**
     * Makes the set as a start in that country makes it; what follows is asked afterwards. Selects
     * the model anew, because a country leaves the items that only the former one brings.
     */
    void setCountry(int32_t model, int32_t country);

    /**
     * Asks for everything that `expected` tells of the set, and compares the answers with it.
     *
     * @param where  for the message of a failure
     * @param kinds  which of it: "item", "delay" and so on; empty for all
     */
    void compare(const Told& expected, int32_t country, const std::string& where,
                 const std::vector<std::string>& kinds = {});

    /** Compares the keys and values of whole sections. */
    void compareSections(const Told& expected, const std::vector<std::string>& sections,
                         const std::string& where);

    /** Makes the calls. @return how many answers were compared */
    size_t run();

  private:
    using Json = nlohmann::json;
    using Read = std::function<std::string(const Json&)>;

    void ask(const Json& call, const std::string& expected, const std::string& what,
             const Read& read);
    std::string written(const std::string& value) const;

    const std::string mRoot;
    testing::Process mService;
    std::string mLines;
    std::vector<std::function<void(const Json&, bool hasBytes)>> mChecks;
    size_t mCompared = 0;
};

}  // namespace mlk::tree
