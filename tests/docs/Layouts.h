// Where the fields of the exchange stand, taken from the headers of the library.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/RawSegment.h"

namespace vantric_test {

struct Field {
    std::string name;
    std::size_t offset;  // bytes
    std::size_t size;    // bytes
    std::string type;    // int32, uint32, uint8, char[N], uint8[N]
};

using Layout = std::vector<Field>;

// By the names that the document uses. The offsets of "StateSegment" and "Ring" count from the
// start of the object, those of the records from their own start. Throws std::out_of_range for
// others.
const Layout& layoutOf(const std::string& name);

const std::vector<std::string>& layoutNames();

// Throws std::runtime_error when there is none of that name.
const Field& fieldOf(const Layout& layout, const std::string& name);

// A number, or a text in double quotes, as the bytes of a field of that size. Throws
// std::runtime_error for a value that does not fit; a text needs room for its NUL.
Bytes encoded(const std::string& value, std::size_t size);

}  // namespace vantric_test
