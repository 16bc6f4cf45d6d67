// --show: shows the result in the terminal.
#pragma once

#include <string>

#include <zqx/img/Image.h>

#include "terminal/TerminalPicture.h"

namespace CLI {
class App;
}

namespace zqx::app {

/// Whether and how to show a result in the terminal.
struct ShowOption {
    std::string protocol; ///< as given on the command line; empty if the result is not to be shown

    void addTo(CLI::App& command);

    bool wanted() const { return !protocol.empty(); }

    /// Checks that there is a terminal, before work is spent on a picture. @throws UsageError if there is none
    void check() const;

    /// Shows an image. @throws Error
    void show(const img::Image& image) const;
};

} // namespace zqx::app
