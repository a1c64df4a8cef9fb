// Giving up the right to open everybody's files.
#pragma once

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantric_test {

// A preparation of a child process: file modes hold for its program even when root starts it. False
// when the system refuses.
inline bool obeyFileModes() {
    // Only root's programs get rights that their parent has given up; this takes them from the set
    // of those that can be had at all.
    for (const int right : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        if (geteuid() == 0 &&
            prctl(PR_CAPBSET_DROP, static_cast<unsigned long>(right), 0, 0, 0) != 0) {
            return false;
        }
    }
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (syscall(SYS_capget, &header, data) != 0) {
        return false;
    }
    data[0].effective &= ~(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH);
    return syscall(SYS_capset, &header, data) == 0;
}

}  // namespace vantric_test
