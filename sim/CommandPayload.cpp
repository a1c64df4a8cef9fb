#include "sim/CommandPayload.h"

#include <charconv>
#include <filesystem>

namespace vantric_sim {

namespace {

// Takes the text up to the next comma off `rest`, and the comma.
std::optional<std::string_view> takeField(std::string_view& rest) {
    const std::size_t comma = rest.find(',');
    if (comma == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view field = rest.substr(0, comma);
    rest.remove_prefix(comma + 1);
    return field;
}

std::optional<int32_t> takeInteger(std::string_view& rest) {
    const auto field = takeField(rest);
    if (!field) {
        return std::nullopt;
    }
    const char* end = field->data() + field->size();
    int32_t value = 0;
    const auto [stop, error] = std::from_chars(field->data(), end, value);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::optional<Encryption> parseEncryption(std::string_view payload) {
    const auto type = takeInteger(payload);
    if (!type) {
        return std::nullopt;
    }
    return Encryption{*type, std::string(payload)};
}

std::optional<Connection> parseConnection(std::string_view payload) {
    const auto ssid = takeField(payload);
    if (!ssid) {
        return std::nullopt;
    }
    const auto encryption = parseEncryption(payload);
    if (!encryption) {
        return std::nullopt;
    }
    return Connection{std::string(*ssid), *encryption};
}

std::optional<Connection> parseRadiusConnection(std::string_view payload) {
    auto connection = parseConnection(payload);
    if (!connection) {
        return std::nullopt;
    }
    std::string_view userNameAndPassword = connection->encryption.password;
    if (!takeField(userNameAndPassword)) {
        return std::nullopt;
    }
    connection->encryption.password = std::string(userNameAndPassword);
    return connection;
}

std::optional<std::string> configurationName(std::string_view fileName) {
    std::string name = std::filesystem::path(fileName).stem().string();
    if (name.empty()) {
        return std::nullopt;
    }
    return name;
}

}  // namespace vantric_sim
