// Lets the cases of a binary run in one process, one after the other.
#pragma once

namespace vantric_test {

// From now on removes the objects that a case leaves behind in the private /dev/shm, as semaphores
// always are.
void removeLeftoversOfEachCase();

}  // namespace vantric_test
