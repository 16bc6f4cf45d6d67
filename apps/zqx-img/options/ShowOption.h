// --show: the result in the terminal.
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
    std::string protocol; ///< as named on the command line, empty when it is not to be shown

    void addTo(CLI::App& command);

    bool wanted() const { return !protocol.empty(); }

    /// Before work is spent on a picture. @throws UsageError when there is no terminal to show it in
    void check() const;

    /// Shows it. @throws Error
    void show(const img::Image& image) const;
};

} // namespace zqx::app
