// Metadata of many pictures at once, and of files whose structure leads nowhere.
#include <atomic>
#include <thread>
#include <vector>

#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Codec.h"

#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::pictures {

namespace {

const std::string XMP = R"(<?xpacket begin="" id="W5M0MpCehiHzreSzNTczkc9d"?>
<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
<rdf:Description rdf:about="" xmlns:dc="http://purl.org/dc/elements/1.1/" dc:format="a word"/>
</rdf:RDF></x:xmpmeta><?xpacket end="w"?>)";

/// A little-endian TIFF directory with one entry: the maker "Tester".
std::vector<unsigned char> exifOfMaker() {
    const std::string text("II\x2A\0\x08\0\0\0\x01\0\x0F\x01\x02\0\x07\0\0\0\x1A\0\0\0\0\0\0\0Tester\0", 33);
    return {text.begin(), text.end()};
}

class AppMetadataTest : public img::test::DirectoryTest {
protected:
    AppMetadataTest() { installExiv2(); }

    /// A picture whose file holds the metadata.
    std::string writePicture(const std::string& fileName, const Metadata& metadata) const {
        Picture picture;
        picture.metadata = metadata;
        const std::string name = at(fileName);
        OutputFile file(name);
        encodePicture(file, name, outputFormat(name), PixelBuffer(32, 16, SampleLayout::RGB8), SampleLayout::RGB8,
                      picture, {});
        file.commit();
        return name;
    }
};

TEST_F(AppMetadataTest, PacketThatNeedsNoChangeKeepsItsBytes) {
    Metadata metadata;
    metadata.xmp = XMP;
    for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
        EXPECT_EQ(readPicture(writePicture(name, metadata), {}).metadata.xmp, XMP) << name;
    }
}

TEST_F(AppMetadataTest, BlocksOfManyThreadsDoNotMix) {
    constexpr int THREADS = 8;
    constexpr int ROUNDS = 20;
    std::atomic<int> wrong = 0;
    const auto work = [&](int number) {
        const WarningListener listener([&](const std::string&) { ++wrong; });
        Metadata metadata;
        metadata.xmp = XMP;
        metadata.xmp.replace(metadata.xmp.find("a word"), 6, "word " + std::to_string(number));
        metadata.exif = exifOfMaker();
        for (int round = 0; round < ROUNDS; ++round) {
            const char* extension = round % 2 == 0 ? ".jpg" : ".tif";
            const Metadata read = readPicture(writePicture(std::to_string(number) + extension, metadata), {}).metadata;
            if (read.xmp != metadata.xmp || read.exif.empty()) {
                ++wrong;
            }
        }
    };
    std::vector<std::jthread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back(work, i);
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

TEST_F(AppMetadataTest, BlocksThatAreNoneLeaveThePictureAsItIs) {
    Metadata metadata;
    metadata.exif = {1, 2, 3};
    metadata.iptc = {4, 5, 6};
    metadata.xmp = "no packet";
    std::string warnings;
    const WarningListener listener([&](const std::string& line) { warnings += line + "\n"; });
    const Picture picture = readPicture(writePicture("a.png", metadata), {});
    EXPECT_NE(warnings.find("left out"), std::string::npos) << warnings;
    EXPECT_EQ(picture.width(), 32U);
    EXPECT_TRUE(picture.metadata.xmp.empty());
}

TEST_F(AppMetadataTest, DamagedExifLeavesThePicture) {
    Metadata metadata;
    metadata.exif = exifOfMaker();
    const std::string directory(metadata.exif.begin(), metadata.exif.end());
    const WarningListener silence([](const std::string&) {});
    for (const char* name : {"a.jpg", "a.webp"}) {
        const std::string file = img::test::readFile(writePicture(name, metadata));
        const std::size_t start = file.find("Tester") - directory.find("Tester");
        ASSERT_LT(start, file.size()) << name;
        for (std::size_t i = start; i < start + directory.size(); ++i) {
            std::string damaged = file;
            damaged[i] = static_cast<char>(~damaged[i]);
            img::test::writeFile(at(name), damaged);
            EXPECT_EQ(readPicture(at(name), {}).width(), 32U) << name << ", byte " << i - start;
        }
    }
}

} // namespace

} // namespace zqx::pictures
