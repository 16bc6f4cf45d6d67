// Each line is written at once, so that lines of several threads and processes do not mix.
#include "terminal/Output.h"

#include <cstdio>
#include <exception>
#include <string>

#include "zqx/pictures/files/Error.h"
#include "zqx/text/Cleaning.h"

namespace zqx::app {

namespace {

bool write(std::string_view bytes, std::FILE* stream) noexcept {
    return std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size() && std::fflush(stream) == 0;
}

/// Reports a lack of memory without allocating any.
void writeErrorLine(const char* prefix, std::string_view line) noexcept {
    try {
        write(prefix + text::printable(line) + "\n", stderr);
    } catch (const std::exception&) {
        write("zqx-img: out of memory\n", stderr);
    }
}

} // namespace

void writeErrorLine(std::string_view line) noexcept {
    writeErrorLine("", line);
}

void complain(std::string_view text) noexcept {
    writeErrorLine("zqx-img: ", text);
}

void printWarning(std::string_view text) noexcept {
    writeErrorLine("zqx-img: warning: ", text);
}

bool writeOutput(std::string_view bytes) noexcept {
    return write(bytes, stdout);
}

void print(std::string_view text) {
    if (!writeOutput(text)) {
        throw pictures::Error("standard output", "could not be written");
    }
}

void printLine(std::string_view line) {
    print(text::printable(line) + "\n");
}

} // namespace zqx::app
