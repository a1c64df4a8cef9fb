// The descriptors 0, 1 and 2 at the start of the program.
#pragma once

namespace vantricprobe {

// Gives each of them that is closed a meaning of its own: reading and writing go on failing, but no
// file that is opened later gets the number, so nothing that is printed can end up in a log file.
// A descriptor that cannot be had stays closed.
void occupyStandardDescriptors();

}  // namespace vantricprobe
