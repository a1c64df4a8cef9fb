// The command forget.
#include "ctl/Request.h"

namespace vantricctl {

int forget(const Options& options) {
    return carryOut(
        options,
        {ModemCommand::SetWifiPasswordAndEncryptionType, "0,0", [](const ModemState& state) {
             return state.wifiPassword[0] == '\0' && state.wifiEncryptionType == 0;
         }});
}

}  // namespace vantricctl
