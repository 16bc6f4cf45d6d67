// The option that every command which writes pictures has.
#pragma once

#include <CLI/CLI.hpp>

namespace zqx::img::app {

constexpr int DEFAULT_QUALITY = 92;

inline void addQualityOption(CLI::App& command, int& quality) {
    command.add_option("--quality", quality, "Quality of JPEG, WebP and JPEG XR output, 1 to 100")
        ->check(CLI::Range(1, 100))
        ->type_name("N")
        ->capture_default_str();
}

} // namespace zqx::img::app
