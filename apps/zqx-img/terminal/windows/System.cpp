// Consoles and interruptions on Windows.
#include "terminal/System.h"

#include <cstdio>

#include <io.h>

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

namespace zqx::app {

namespace {

HANDLE getConsole(StandardStream stream) {
    return GetStdHandle(stream == StandardStream::OUTPUT ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

void (*gEnd)(int exitCode) = nullptr;

BOOL WINAPI onConsoleEvent(DWORD event) {
    constexpr int INTERRUPTED = 130;
    constexpr int TERMINATED = 143;
    gEnd(event == CTRL_C_EVENT ? INTERRUPTED : TERMINATED);
    return TRUE;
}

} // namespace

bool isTerminal(StandardStream stream) {
    return _isatty(_fileno(stream == StandardStream::OUTPUT ? stdout : stderr)) != 0;
}

std::optional<TerminalSize> windowSize(StandardStream stream) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(getConsole(stream), &info) == 0) {
        return std::nullopt;
    }
    return TerminalSize{static_cast<unsigned>(info.srWindow.Right - info.srWindow.Left + 1),
                        static_cast<unsigned>(info.srWindow.Bottom - info.srWindow.Top + 1), 0, 0};
}

bool obeysEscapes(StandardStream stream) {
    DWORD mode = 0;
    return GetConsoleMode(getConsole(stream), &mode) != 0 &&
           SetConsoleMode(getConsole(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool isInForeground() {
    return true;
}

bool showsUnicode() {
    return GetConsoleOutputCP() == CP_UTF8;
}

void prepareStandardStreams() { // handles are not reused like descriptors
}

void watchForEnd(void (*end)(int exitCode)) {
    gEnd = end;
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

} // namespace zqx::app
