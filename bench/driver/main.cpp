// performance_driver OPERATION COUNT repeats one operation of the product for a tool that counts
// what it costs; performance_driver --list names the operations. COUNT is a multiple of the batch.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "bench/driver/Operations.h"
#include "bench/driver/Repetition.h"
#include "tests/support/PrivateSharedMemory.h"

namespace {

using namespace vantric_bench;

NamedOperations allOperations() {
    NamedOperations all;
    for (const NamedOperations& some : {stateOperations(), commandOperations(), logOperations()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

int list() {
    for (const NamedOperation& operation : allOperations()) {
        std::puts(operation.name);
    }
    return 0;
}

int repeatByName(const std::string& name, long count) {
    for (const NamedOperation& operation : allOperations()) {
        if (operation.name == name) {
            vantric_test::enterPrivateSharedMemory();
            operation.repeat(count);
            return 0;
        }
    }
    std::fprintf(stderr, "no operation is named %s\n", name.c_str());
    return 2;
}

int run(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == "--list") {
        return list();
    }
    const long count = argc == 3 ? std::strtol(argv[2], nullptr, 10) : 0;
    if (count <= 0 || count % batchSize != 0) {
        std::fprintf(stderr, "performance_driver --list | OPERATION COUNT, a multiple of %d\n",
                     batchSize);
        return 2;
    }
    return repeatByName(argv[1], count);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
