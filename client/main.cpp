#include "client/CommandLine.h"
#include "client/StandardDescriptors.h"

int main(int argc, char** argv) {
    vantricprobe::occupyStandardDescriptors();
    return vantricprobe::runCommandLine(argc, argv);
}
