// Terminals, streams and signals on POSIX systems. A thread waits for signals, because a signal handler may not lock,
// allocate or print.
#include "terminal/System.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zqx::app {

namespace {

int getDescriptor(StandardStream stream) {
    return stream == StandardStream::OUTPUT ? STDOUT_FILENO : STDERR_FILENO;
}

/// The value of an environment variable; empty if it is not set.
std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool isIgnored(int number) {
    struct sigaction present {};
    return sigaction(number, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

} // namespace

bool isTerminal(StandardStream stream) {
    return isatty(getDescriptor(stream)) != 0;
}

std::optional<TerminalSize> windowSize(StandardStream stream) {
    winsize window{};
    if (ioctl(getDescriptor(stream), TIOCGWINSZ, &window) != 0 || window.ws_col == 0 || window.ws_row == 0) {
        return std::nullopt;
    }
    TerminalSize size{window.ws_col, window.ws_row, 0, 0};
    if (window.ws_xpixel >= window.ws_col && window.ws_ypixel >= window.ws_row) {
        size.cellWidth = static_cast<unsigned>(window.ws_xpixel / window.ws_col);
        size.cellHeight = static_cast<unsigned>(window.ws_ypixel / window.ws_row);
    }
    return size;
}

bool obeysEscapes(StandardStream) {
    const std::string_view kind = variable("TERM");
    return !kind.empty() && kind != "dumb";
}

bool isInForeground() {
    return tcgetpgrp(STDERR_FILENO) == getpgrp();
}

bool showsUnicode() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) { // the first one that is set decides, as in the C library
        if (std::string locale(variable(name)); !locale.empty()) {
            std::ranges::transform(locale, locale.begin(), [](unsigned char c) {
                return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
            });
            return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
        }
    }
    return false;
}

void prepareStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN); // a reader that stops must not interrupt us in the middle of a file
    std::signal(SIGXFSZ, SIG_IGN); // exceeding a file size limit becomes an ordinary write error
    struct Hole {
        int descriptor;
        int mode; // in which using the stream fails
    };
    for (const Hole hole : {Hole{STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}}) {
        if (fcntl(hole.descriptor, F_GETFD) == -1) {
            static_cast<void>(open("/dev/null", hole.mode)); // gets the lowest free descriptor, which is this one
        }
    }
}

void watchForEnd(void (*end)(int exitCode)) {
    constexpr int KILLED = 128;
    sigset_t watched;
    sigemptyset(&watched);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(number)) {
            sigaddset(&watched, number);
        }
    }
    pthread_sigmask(SIG_BLOCK, &watched,
                    nullptr); // inherited by all threads started later, so that only the waiting thread gets them
    std::thread([watched, end] {
        for (int number = 0;;) {
            if (sigwait(&watched, &number) == 0) {
                end(KILLED + number);
            }
        }
    }).detach();
}

} // namespace zqx::app
