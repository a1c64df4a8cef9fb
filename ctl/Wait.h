// Waiting that a time limit and signals end. The process has one wait at a time; nothing here is
// safe from several threads.
#pragma once

#include "Vantric/Utils/Waiting.h"

namespace vantricctl {

using com_qel::Orvane::Vantric::Deadline;

// From now on SIGINT and SIGTERM are noted, and SIGPIPE is ignored. A command that a foreign lock
// blocks cannot look at the note, so the process ends two seconds after the signal in any case.
void catchSignals();

// Throws a Failure without a sentence when SIGINT or SIGTERM has arrived.
void checkSignals();

// Sleeps for a poll interval. False, without sleeping, when the deadline has passed. Throws as
// checkSignals() does.
bool waitForPoll(const Deadline& deadline);

// From now on, the process ends with statusTimeOver and a sentence on standard error once a foreign
// lock has blocked it for `seconds`; 0 ends the limit.
void limitBlocking(unsigned int seconds);

}  // namespace vantricctl
