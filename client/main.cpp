#include "client/CommandLine.h"

int main(int argc, char** argv) {
    return vantricprobe::runCommandLine(argc, argv);
}
