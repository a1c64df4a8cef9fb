// The command status.
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
    Report report;
    report.add("ageSeconds", copy.ageSeconds);
    report.addFields(&state, com_qel::Orvane::Vantric::stateFields());
    report.add("refreshed", !options.skipsRefresh);
    report.add("extended").addFields(&extended, com_qel::Orvane::Vantric::extendedFields());
    writeReport(report, options.asJson);
    return statusDone;
}

}  // namespace vantricctl
