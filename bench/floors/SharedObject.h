// An existing shared-memory object and its contents lock, opened by hand: the floors use the
// system's own calls, with nothing in between.
#pragma once

#include <semaphore.h>

#include <cstddef>
#include <string>

namespace vantric_bench {

class SharedObject {
  public:
    // Throws std::runtime_error when the object or its lock does not exist.
    explicit SharedObject(const std::string& name);
    ~SharedObject();
    SharedObject& operator=(SharedObject&&) = delete;

    // The bytes after the attach count.
    void* payload() const { return static_cast<unsigned char*>(address_) + attachCountSize; }
    sem_t* semaphore() const { return semaphore_; }

  private:
    static constexpr std::size_t attachCountSize = 4;

    void* address_ = nullptr;
    std::size_t length_ = 0;
    sem_t* semaphore_ = nullptr;
};

}  // namespace vantric_bench
