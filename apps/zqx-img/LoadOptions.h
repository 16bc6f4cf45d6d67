// How picture files are read: the options that every command which reads them has.
#pragma once

namespace CLI {
class App;
}

namespace zqx::img::app {

/// What a picture file may ask for before it is refused, and who decodes it.
struct LoadOptions {
    /// Adds the options to a command.
    void addTo(CLI::App& command);
};

} // namespace zqx::img::app
