/// \file
/// The three state segments, by name, all of layout version 1. Owners hold them as
/// SharedMemoryLayout, whose contract applies.
#pragma once

#include "CoreMisc/Export.h"
#include "Vantric/ClientServer/SharedMemoryLayout.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "Vantric/ModemState.h"

namespace com_qel::Orvane::Vantric::ClientServer {

/// Segment "ModemStateShm": the basic state, refreshed by the server all the time.
class SharedMemoryModemState : public SharedMemoryLayout<ModemState, SharedMemoryProvider> {
  public:
    /// Maps the segment; passes on what SharedMemoryProvider::map() throws.
    VANTRIC_EXPORT SharedMemoryModemState();
};

/// Segment "ModemStateEx": the extended state, refreshed on request.
class SharedMemoryModemStateExtended
    : public SharedMemoryLayout<ModemStateExtended, SharedMemoryProvider> {
  public:
    /// Maps the segment; passes on what SharedMemoryProvider::map() throws.
    VANTRIC_EXPORT SharedMemoryModemStateExtended();
};

/// Segment "ModemWifiList": the networks of the last scan, refreshed on request.
class SharedMemoryWifiList : public SharedMemoryLayout<WifiInfosList, SharedMemoryProvider> {
  public:
    /// Maps the segment; passes on what SharedMemoryProvider::map() throws.
    VANTRIC_EXPORT SharedMemoryWifiList();
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
