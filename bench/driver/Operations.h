// The operations that the driver can repeat, one table for each subject.
#pragma once

#include <vector>

namespace vantric_bench {

struct NamedOperation {
    const char* name;
    void (*repeat)(long count);  // throws std::runtime_error when an operation fails
};

using NamedOperations = std::vector<NamedOperation>;

NamedOperations stateOperations();
NamedOperations commandOperations();
NamedOperations logOperations();

}  // namespace vantric_bench
