#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

namespace mlk::testing {

/**
 * While it lives, this process gets at most that many bytes more than it has now. Not with a
 * sanitizer, which ends the process when memory runs out.
 */
class AddressLimit {
  public:
    explicit AddressLimit(rlim_t more) {
        rlim_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        (void)getrlimit(RLIMIT_AS, &mFormer);
        rlimit limit = mFormer;
        limit.rlim_cur = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + more;
        (void)setrlimit(RLIMIT_AS, &limit);
    }
    ~AddressLimit() { (void)setrlimit(RLIMIT_AS, &mFormer); }
    AddressLimit(const AddressLimit&) = delete;
    AddressLimit& operator=(const AddressLimit&) = delete;

  private:
    rlimit mFormer{};
};

}  // namespace mlk::testing
