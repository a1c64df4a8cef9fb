// Lets a test act between two uses of a lock by one thread.
#pragma once

#include <functional>

namespace vantric_test {

// Runs `action` right after this process's next release of a semaphore, in the releasing thread.
void afterNextUnlock(std::function<void()> action);

}  // namespace vantric_test
