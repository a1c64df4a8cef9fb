// A structure that this process and the copies forked from it later see alike.
#pragma once

#include <sys/mman.h>

#include <new>
#include <stdexcept>

namespace vantric_bench {

template <class Variables>
class SharedVariables {
  public:
    SharedVariables() {
        void* memory = mmap(nullptr, sizeof(Variables), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::runtime_error("cannot map shared variables");
        }
        variables_ = new (memory) Variables;
    }
    ~SharedVariables() { munmap(variables_, sizeof(Variables)); }

    SharedVariables(const SharedVariables&) = delete;
    SharedVariables& operator=(const SharedVariables&) = delete;

    Variables* operator->() const { return variables_; }

  private:
    Variables* variables_;
};

}  // namespace vantric_bench
