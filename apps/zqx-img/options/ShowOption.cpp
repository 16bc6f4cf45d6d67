// Shows pictures in the terminal.
#include "options/ShowOption.h"

#include <memory>

#include <CLI/CLI.hpp>

#include "drawing/Drawing.h"
#include "options/Validators.h"
#include "terminal/Output.h"
#include "terminal/Terminal.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::app {

using namespace pictures;

namespace {

constexpr const char* BEST = "best";

TerminalProtocol parseProtocol(const std::string& name) {
    static constexpr struct {
        const char* name;
        TerminalProtocol protocol;
    } PROTOCOLS[] = {{"kitty", TerminalProtocol::KITTY},
                     {"iterm", TerminalProtocol::ITERM},
                     {"sixel", TerminalProtocol::SIXEL},
                     {"symbols", TerminalProtocol::SYMBOLS}};
    for (const auto& known : PROTOCOLS) {
        if (name == known.name) {
            return known.protocol;
        }
    }
    return TerminalProtocol::BEST;
}

} // namespace

void ShowOption::addTo(CLI::App& command) {
    command
        .add_flag("--show{best}", protocol,
                  "Show the result in the terminal, in the best way it supports, or with --show=kitty, --show=iterm, "
                  "--show=sixel or --show=symbols")
        ->check(requireOneOf({BEST, "kitty", "iterm", "sixel", "symbols"}));
}

void ShowOption::check() const {
    if (protocol == BEST && !isTerminal(StandardStream::OUTPUT)) {
        throw UsageError("--show", "standard output is not a terminal; give -o FILE, or name a protocol, as in "
                                   "--show=sixel");
    }
}

void ShowOption::show(const img::Image& image) const {
    const std::shared_ptr<img::Image> pixels = image.convertTo(img::Image::SRGBA8);
    print(encodeForTerminal({static_cast<const unsigned char*>(pixels->getDataPtr()),
                             static_cast<unsigned>(pixels->getWidth()), static_cast<unsigned>(pixels->getHeight()),
                             terminalSize(StandardStream::OUTPUT), parseProtocol(protocol), showsUnicode()}));
}

} // namespace zqx::app
