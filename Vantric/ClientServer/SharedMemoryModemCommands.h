/// \class com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands
/// The command channel: frames of a command and its payload in the ring "ModemCommandsShm".
///
/// Clients are producers and only enqueue; the server is the one consumer and only dequeues. There
/// is no reply path: effects show in the state segments. Frame: command (32 bit), payload length in
/// bytes (32 bit), payload, all within 4096 bytes. Ownership: owns its mapping of the ring.
/// Thread-safety: none, an object belongs to one thread. Process-safety: enqueue() writes a frame
/// in one hold of the contents lock; dequeue() takes header and payload in two, so there may be
/// only one consumer.
#pragma once

#include <cstdint>
#include <memory>

#include "CoreMisc/Export.h"

namespace com_qel::Orvane::Vantric::ClientServer {

/// What a client can ask for, with the text fields of the payload, which are joined by "," and not
/// escaped. 0 to 4 are never sent.
enum class ModemCommand : uint32_t {
    SwitchToWifi = 5,                      ///< none
    SwitchToCarrier = 6,                   ///< none
    SetWifiSsid = 7,                       ///< ssid
    SetWifiPasswordAndEncryptionType = 8,  ///< encryption type, password; "0,0" forgets the network
    SetConfig = 9,                         ///< configuration file name
    RequestWifiList = 10,                  ///< none
    RequestModemStatus = 11,               ///< none
    SendText = 12,                         ///< text
    SendTextPair = 13,                     ///< first text, second text
    SetWifiConnection = 14,                ///< ssid, encryption type, password
    SetWifiConnectionRadius = 15,          ///< ssid, encryption type, user name, password
};

class VANTRIC_EXPORT SharedMemoryModemCommands {
  public:
    /// Attaches to the ring as its consumer or as a producer. The first producer sets the ring up,
    /// which drops all unread frames. Passes on what SharedMemoryProvider::map() throws.
    explicit SharedMemoryModemCommands(bool consumer);

    /// Detaches from the ring, whose contents stay while another user is attached.
    ~SharedMemoryModemCommands();

    SharedMemoryModemCommands(const SharedMemoryModemCommands&) = delete;
    SharedMemoryModemCommands& operator=(const SharedMemoryModemCommands&) = delete;

    /// Appends one frame and returns true, always: callers cannot tell a frame that was dropped (no
    /// room, a ring that is not set up, more than 4088 bytes, a null payload with a size) from one
    /// that was queued. `size` is in bytes; `payload` may be null when it is 0 and is not kept.
    /// Throws std::bad_alloc when the frame cannot be built.
    bool enqueue(uint32_t command, const void* payload, uint32_t size);

    /// Takes one frame out. `*size` is the capacity of `buffer` in bytes on entry and the payload's
    /// length on return; both stay untouched for a frame without payload.
    /// False, with all outputs untouched, when header or payload is not complete. False
    /// as well, with an Error record, when the payload needs a buffer and there is none or one too
    /// small. An incomplete header stays; in the other cases the header is gone and the payload
    /// stays, so the next call reads payload bytes as a header. A consumer killed between the two
    /// holds of the lock leaves the ring in the same way.
    bool dequeue(uint32_t& command, void* buffer, uint32_t* size);

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
