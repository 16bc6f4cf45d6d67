// The options about reading picture files.
#include "LoadOptions.h"

namespace zqx::img::app {

void LoadOptions::addTo(CLI::App&) {
}

} // namespace zqx::img::app
