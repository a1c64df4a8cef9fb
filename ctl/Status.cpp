// The command status.
#include <nlohmann/json.hpp>

#include "ctl/Output.h"
#include "ctl/Request.h"

namespace vantricctl {

int showStatus(const Options& options) {
    publishedCopyOf(objectOf<ModemState>);  // there must be a server
    double seconds = 0;
    const auto extended = options.skipsRefresh
                              ? publishedRecord<ModemStateExtended>()
                              : requestUpdate<ModemStateExtended>(ModemCommand::RequestModemStatus,
                                                                  options.timeoutSeconds, seconds);
    const ObjectCopy copy = publishedCopyOf(objectOf<ModemState>);
    const auto state = recordIn<ModemState>(copy);
    Report report = {{"ageSeconds", copy.ageSeconds}};
    addFields(report, &state, com_qel::Orvane::Vantric::stateFields());
    report["refreshed"] = !options.skipsRefresh;
    addFields(report["extended"], &extended, com_qel::Orvane::Vantric::extendedFields());
    writeReport(report, options.asJson);
    return statusDone;
}

}  // namespace vantricctl
