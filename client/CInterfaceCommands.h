// The commands that exercise the library's C interface: --forgetwifi, --statuscapi.
//
// Unlike the others they try to connect only once, guard against no exception and measure on the
// monotonic clock.
#pragma once

namespace vantricprobe {

// Makes the server forget the current wifi network.
void forgetWifi();

// Prints the extended status.
void printExtendedStatus();

}  // namespace vantricprobe
