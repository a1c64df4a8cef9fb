// What the objects of the exchange and the records of the C interface hold, byte for byte, after
// certain operations. Every architecture must make the same bytes and understand them.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"

namespace vantric_test {

// What is published: every field differs from zero, and texts fill their fields where they may.
Vantric::ModemState imageState();
Vantric::ModemStateExtended imageExtendedState();
Vantric::WifiInfosList imageWifiList();

// What the client of commandsImage() sent, in order.
Frames imageFrames();

struct Image {
    std::string name;
    Bytes (*make)();  // in an empty /dev/shm, with the product's own classes

    friend std::ostream& operator<<(std::ostream& stream, const Image& image) {
        return stream << image.name;
    }
};

// All of them; "OBJECT.situation", or the name of a C structure.
const std::vector<Image>& images();

}  // namespace vantric_test
