// A named semaphore, handled without the product's lock class.
#pragma once

#include <fcntl.h>
#include <semaphore.h>
#include <sys/stat.h>

#include <stdexcept>
#include <string>

namespace vantric_test {

// The object that a semaphore of this name lives in.
inline std::string semaphoreObject(const std::string& name) {
    return "sem." + name;
}

class RawSemaphore {
  public:
    // Opens an existing semaphore. Throws std::runtime_error when there is none.
    explicit RawSemaphore(const std::string& name) : semaphore_(sem_open(name.c_str(), 0)) {
        check(name);
    }

    // Creates one. Throws std::runtime_error when it exists.
    RawSemaphore(const std::string& name, unsigned int value)
        : semaphore_(sem_open(name.c_str(), O_CREAT | O_EXCL, 0666, value)) {
        check(name);
    }

    ~RawSemaphore() { sem_close(semaphore_); }
    RawSemaphore& operator=(RawSemaphore&&) = delete;

    int value() const {
        int result = -1;
        sem_getvalue(semaphore_, &result);
        return result;
    }

    // Takes the semaphore if that is possible at once.
    bool tryTake() { return sem_trywait(semaphore_) == 0; }

    void post() { sem_post(semaphore_); }

  private:
    void check(const std::string& name) const {
        if (semaphore_ == SEM_FAILED) {
            throw std::runtime_error("no semaphore " + name);
        }
    }

    sem_t* semaphore_;
};

inline int semaphoreValue(const std::string& name) {
    return RawSemaphore(name).value();
}

}  // namespace vantric_test
