#include "client/StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace vantricprobe {

namespace {

struct StandardDescriptor {
    int number;
    int uselessAccess;  // the access under which its users fail as they do on a closed one
};

constexpr StandardDescriptor standardDescriptors[] = {
    {STDIN_FILENO, O_WRONLY},
    {STDOUT_FILENO, O_RDONLY},
    {STDERR_FILENO, O_RDONLY},
};

}  // namespace

void occupyStandardDescriptors() {
    for (const StandardDescriptor& descriptor : standardDescriptors) {
        // open() takes the lowest free number, and those below are taken by now.
        if (fcntl(descriptor.number, F_GETFD) == -1 &&
            open("/dev/null", descriptor.uselessAccess) == -1) {
            return;
        }
    }
}

}  // namespace vantricprobe
