#include "bench/floors/SharedObject.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

namespace vantric_bench {

SharedObject::SharedObject(const std::string& name) {
    const int descriptor = shm_open(name.c_str(), O_RDWR, 0);
    struct stat status = {};
    if (descriptor == -1 || fstat(descriptor, &status) != 0) {
        throw std::runtime_error("there is no object " + name);
    }
    length_ = static_cast<std::size_t>(status.st_size);
    address_ = mmap(nullptr, length_, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    close(descriptor);
    semaphore_ = sem_open((name + "Lock").c_str(), 0);
    if (address_ == MAP_FAILED || semaphore_ == SEM_FAILED) {
        throw std::runtime_error("cannot open the object " + name);
    }
}

SharedObject::~SharedObject() {
    sem_close(semaphore_);
    munmap(address_, length_);
}

}  // namespace vantric_bench
