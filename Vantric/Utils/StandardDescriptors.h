/// \file
/// The descriptors 0, 1 and 2 at the start of a program.
///
/// Internal to the programs of this tree.
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace com_qel::Orvane::Vantric {

/// Occupies each of them that is closed. Reading from it and writing to it still fail, but no file
/// that is opened later gets its number, so printed text cannot end up in another file or in shared
/// memory. A descriptor that cannot be occupied stays closed.
inline void occupyStandardDescriptors() {
    struct StandardDescriptor {
        int number;
        int uselessAccess;  // the access under which its users fail as they do on a closed one
    };
    constexpr StandardDescriptor descriptors[] = {
        {STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}};
    for (const StandardDescriptor& descriptor : descriptors) {
        // open() takes the lowest free number, and those below are taken by now.
        if (fcntl(descriptor.number, F_GETFD) == -1 &&
            open("/dev/null", descriptor.uselessAccess) == -1) {
            return;
        }
    }
}

}  // namespace com_qel::Orvane::Vantric
