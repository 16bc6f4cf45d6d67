// Links the library for picture files: writes a picture and reads it back. keep FILE: a name with an extension of a
// format that loses nothing.
#include <cstdio>
#include <cstring>
#include <exception>

#include <zqx/pictures/Reader.h>
#include <zqx/pictures/Writer.h>

namespace {

using zqx::pictures::Picture;
using zqx::pictures::SampleLayout;

constexpr unsigned char ROWS[2][6] = {{1, 20, 255, 0, 128, 64}, {3, 2, 1, 200, 100, 50}};

Picture makePicture() {
    Picture picture;
    picture.pixels = zqx::pictures::PixelBuffer(2, 2, SampleLayout::RGB8);
    for (std::size_t row = 0; row < 2; ++row) {
        std::memcpy(picture.image().getRowPtr(row), ROWS[row], sizeof(ROWS[row]));
    }
    return picture;
}

bool isKept(const Picture& picture) {
    if (picture.width() != 2 || picture.height() != 2 || picture.stored != SampleLayout::RGB8) {
        return false;
    }
    for (std::size_t row = 0; row < 2; ++row) {
        if (std::memcmp(picture.image().getRowPtr(row), ROWS[row], sizeof(ROWS[row])) != 0) {
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FILE\n", argv[0]);
        return 2;
    }
    try {
        zqx::pictures::writePicture(makePicture(), argv[1]);
        if (!isKept(zqx::pictures::readPicture(argv[1]))) {
            std::fprintf(stderr, "%s comes back as another picture\n", argv[1]);
            return 1;
        }
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
    return 0;
}
