// Giving up the right to open everybody's files.
#pragma once

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantric_test {

// From here on file modes hold for this process even when it runs as root. For roles: there is no
// way back. False when the system refuses.
inline bool obeyFileModes() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (syscall(SYS_capget, &header, data) != 0) {
        return false;
    }
    data[0].effective &= ~(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH);
    return syscall(SYS_capset, &header, data) == 0;
}

// The same for this process and for the programs that it starts.
inline bool obeyFileModesBeyondExec() {
    // Only root's programs get rights that their parent has given up; this takes them from the set
    // of those that can be had at all.
    for (const int right : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        if (geteuid() == 0 &&
            prctl(PR_CAPBSET_DROP, static_cast<unsigned long>(right), 0, 0, 0) != 0) {
            return false;
        }
    }
    return obeyFileModes();
}

}  // namespace vantric_test
