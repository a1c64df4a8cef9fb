// The command line: the table of options, the walk along the arguments and the usage text.
#pragma once

namespace vantricprobe {

// Runs the commands that the arguments name, in order, and returns the exit status, which is always
// 0. Every word is compared with the options, the program's own name and the values of options
// included. A word that is no option is skipped. A null pointer follows the last argument.
// Throws std::logic_error, meant to abort the program, when the value of an option is missing.
int runCommandLine(int argumentCount, const char* const* arguments);

}  // namespace vantricprobe
