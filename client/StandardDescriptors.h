// The descriptors 0, 1 and 2 at the start of the program.
#pragma once

namespace vantricprobe {

// Occupies each of them that is closed. Reading from it and writing to it still fail, but no file
// that is opened later gets its number, so printed text cannot end up in a log file. A descriptor
// that cannot be occupied stays closed.
void occupyStandardDescriptors();

}  // namespace vantricprobe
