// The command line: the table of options, the walk along the arguments and the usage text.
#pragma once

namespace vantricprobe {

// Runs the commands that the arguments name, in order, and returns the exit status, which is always
// 0. The program's own name is examined like every other argument. A word that is no option is
// skipped, and so is, in its turn, an option's value unless it is an option itself.
// Throws std::logic_error when the value of an option is missing; nobody is to catch that.
int runCommandLine(int argumentCount, const char* const* arguments);

}  // namespace vantricprobe
