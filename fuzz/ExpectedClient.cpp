#include "fuzz/ExpectedClient.h"

#include <algorithm>

#include "fuzz/RecordLayout.h"

namespace vantric_fuzz {

namespace {

constexpr int64_t stalenessLimit = 300;  // seconds

// More than it takes until the broadcast stands still and every failure has been reported.
constexpr int decisiveLooks = 12;

const char* encryptionName(int32_t type) {
    switch (type) {
        case 0:
            return "None";
        case 1:
            return "WPA(PSK)";
        case 2:
            return "WPA2 (PSK)";
        case 3:
            return "WPA+WPA2 (PSK)";
        case 4:
            return "WPA Enterprise (RADIUS)";
        case 5:
            return "WPA2 Enterprise (RADIUS)";
        case 6:
            return "WPA+WPA2 Enterprise (RADIUS)";
        default:
            return "Unknown encryption type";
    }
}

// Writes the text and its NUL.
void putText(Bytes& record, std::size_t offset, const std::string& text) {
    std::copy(text.begin(), text.end(), record.begin() + static_cast<std::ptrdiff_t>(offset));
    record[offset + text.size()] = 0;
}

Bytes infoOf(const Bytes& found, std::size_t entry) {
    const std::size_t begin = entry * list::entrySize;
    Bytes record(info::size, 0);
    putText(record, 0, textAt(found, begin, list::ssidSize));
    std::copy_n(&found[begin + list::encryptionType], 4, &record[info::encryptionType]);
    putText(record, info::encryptionName,
            encryptionName(integerAt(found, begin + list::encryptionType)));
    std::copy_n(&found[begin + list::signalLevel], 4, &record[info::signalLevel]);
    return record;
}

}  // namespace

std::optional<Bytes> ExpectedClient::read(const PublishedSegment& segment, bool Reports::*report) {
    if (segment.isReadable()) {
        reports_.*report = false;
        return segment.record();
    }
    if (!(reports_.*report)) {
        reports_.*report = true;
        return std::nullopt;
    }
    return Bytes(segment.record().size(), 0);
}

std::optional<Bytes> ExpectedClient::readState() {
    const PublishedSegment& segment = broadcast_.current().state;
    const bool isStale =
        broadcast_.now() - integerAt(segment.record(), state::timestamp) > stalenessLimit;
    // A stale state changes nothing about what has been reported.
    return segment.isReadable() && isStale ? std::nullopt : read(segment, &Reports::state);
}

std::optional<int32_t> ExpectedClient::connectivityType() {
    const auto record = readState();
    return record ? std::optional(integerAt(*record, state::connectivityType)) : std::nullopt;
}

std::optional<std::string> ExpectedClient::text(std::size_t offset, std::size_t size) {
    const auto record = readState();
    return record ? std::optional(textAt(*record, offset, size)) : std::nullopt;
}

std::optional<ExpectedClient::Encryption> ExpectedClient::encryption() {
    const auto password = text(state::wifiPassword, state::textSize);
    const auto record = password ? readState() : std::nullopt;
    return record
               ? std::optional(Encryption{integerAt(*record, state::wifiEncryptionType), *password})
               : std::nullopt;
}

std::optional<Bytes> ExpectedClient::refresh(PublishedSegment Publication::*segment,
                                             bool Reports::*report, std::size_t counter,
                                             uint32_t timeoutSeconds) {
    const auto before = read(broadcast_.current().*segment, report);
    if (!before) {
        return std::nullopt;
    }
    const int looks = timeoutSeconds == 0 ? 1 : decisiveLooks;
    for (int look = 0; look < looks; ++look) {
        broadcast_.goOn();
        const auto after = read(broadcast_.current().*segment, report);
        if (!after) {
            return std::nullopt;
        }
        if (integerAt(*after, counter) != integerAt(*before, counter)) {
            return timeoutSeconds == 0 ? std::nullopt : after;
        }
    }
    return std::nullopt;
}

std::optional<Bytes> ExpectedClient::status(uint32_t timeoutSeconds) {
    auto record = refresh(&Publication::extended, &Reports::extended, extended::updateCounter,
                          timeoutSeconds);
    if (record) {
        putText(*record, extended::wifiEncryptionName,
                encryptionName(integerAt(*record, extended::wifiEncryptionType)));
        record->resize(extended::statusSize);
    }
    return record;
}

std::optional<std::vector<Bytes>> ExpectedClient::networks(uint32_t timeoutSeconds) {
    const auto found =
        refresh(&Publication::list, &Reports::list, list::updateCounter, timeoutSeconds);
    if (!found) {
        return std::nullopt;
    }
    const int count = std::clamp(integerAt(*found, list::count), 0, list::maximumCount);
    std::vector<Bytes> records;
    records.reserve(static_cast<std::size_t>(count));
    for (int entry = 0; entry < count; ++entry) {
        records.push_back(infoOf(*found, static_cast<std::size_t>(entry)));
    }
    std::stable_sort(records.begin(), records.end(), [](const Bytes& left, const Bytes& right) {
        return integerAt(left, info::signalLevel) > integerAt(right, info::signalLevel);
    });
    return records;
}

bool ExpectedClient::forget(uint32_t timeoutSeconds) {
    for (int look = 0; timeoutSeconds != 0 && look < decisiveLooks; ++look) {
        const auto current = encryption();
        if (!current) {
            continue;  // without a sleep
        }
        if (current->password.empty() && current->type == 0) {
            return true;
        }
        broadcast_.goOn();
    }
    return false;
}

bool ExpectedClient::setConnection(uint32_t timeoutSeconds) {
    if (!forget(timeoutSeconds)) {
        return false;
    }
    const auto before = text(state::wifiConnectionState, state::textSize);
    for (int look = 0; before && look < decisiveLooks; ++look) {
        const auto now = text(state::wifiConnectionState, state::textSize);
        if (now && *now != *before && *now != "N/A") {
            return true;
        }
        broadcast_.goOn();
    }
    return false;
}

}  // namespace vantric_fuzz
