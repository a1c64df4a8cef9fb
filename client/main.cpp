#include "Vantric/Utils/StandardDescriptors.h"
#include "client/CommandLine.h"

int main(int argc, char** argv) {
    com_qel::Orvane::Vantric::occupyStandardDescriptors();
    return vantricprobe::runCommandLine(argc, argv);
}
