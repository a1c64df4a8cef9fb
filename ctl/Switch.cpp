// The command switch.
#include "ctl/Request.h"

namespace vantricctl {

int switchConnectivity(const Options& options) {
    using com_qel::Orvane::Vantric::ConnectivityType;
    const bool isWifi = options.target == "wifi";
    const auto type =
        static_cast<int32_t>(isWifi ? ConnectivityType::Wifi : ConnectivityType::Carrier);
    return carryOut(options,
                    {isWifi ? ModemCommand::SwitchToWifi : ModemCommand::SwitchToCarrier, "",
                     [=](const ModemState& state) { return state.connectivityType == type; }});
}

}  // namespace vantricctl
