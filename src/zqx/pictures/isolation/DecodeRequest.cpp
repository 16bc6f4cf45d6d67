// The command line of the decoder process: numbers in decimal, then the name of the file.
#include "zqx/pictures/isolation/DecodeRequest.h"

#include <array>
#include <charconv>
#include <cstring>
#include <system_error>

namespace zqx::pictures {

namespace {

constexpr std::size_t NUMBERS = 9;

} // namespace

std::vector<std::string> DecodeRequest::toArguments() const {
    std::vector<std::string> arguments;
    for (const std::uint64_t number :
         {parent, memory, milliseconds, limits.width, limits.height, limits.pixels, limits.bytes,
          static_cast<std::uint64_t>(task), std::uint64_t{requireConfinement}}) {
        arguments.push_back(std::to_string(number));
    }
    arguments.push_back(name);
    return arguments;
}

std::optional<DecodeRequest> DecodeRequest::fromArguments(std::span<const char* const> arguments) {
    if (arguments.size() != NUMBERS + 1) {
        return std::nullopt;
    }
    std::array<std::uint64_t, NUMBERS> numbers{};
    for (std::size_t i = 0; i < NUMBERS; ++i) {
        const char* end = arguments[i] + std::strlen(arguments[i]);
        if (const auto [rest, failure] = std::from_chars(arguments[i], end, numbers[i]);
            failure != std::errc() || rest != end) {
            return std::nullopt;
        }
    }
    if (numbers[7] > static_cast<std::uint64_t>(Task::DESCRIBE)) {
        return std::nullopt;
    }
    DecodeRequest request;
    request.parent = numbers[0];
    request.memory = numbers[1];
    request.milliseconds = numbers[2];
    request.limits = {numbers[3], numbers[4], numbers[5], numbers[6]};
    request.task = static_cast<Task>(numbers[7]);
    request.requireConfinement = numbers[8] != 0;
    request.name = arguments[NUMBERS];
    return request;
}

} // namespace zqx::pictures
