// The TIFF library that FreeImage may stand on writes what it thinks of a file to the terminal.
#pragma once

namespace zqx::img {

/// Keeps the TIFF library's warnings and errors of this thread off the terminal while it lives. What it says on other
/// threads goes where it went, and so does everything where a program has given the library functions of its own.
class TiffSilence {
public:
    TiffSilence();
    ~TiffSilence();
    TiffSilence(const TiffSilence&) = delete;
    TiffSilence& operator=(const TiffSilence&) = delete;
};

} // namespace zqx::img
