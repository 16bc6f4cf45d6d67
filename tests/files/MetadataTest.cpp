// XMP packets that other programs must find in saved files.
#include "FileTest.h"

namespace zqx::img::test {

struct Carrier {
    const char* name;
    const char* file;
    FREE_IMAGE_FORMAT format;
};

namespace {

const std::string PACKET =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
    "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\">"
    "<dc:format>caf\xC3\xA9 \xE5\x86\x99\xE7\x9C\x9F</dc:format></rdf:Description></rdf:RDF></x:xmpmeta>\n"
    "<?xpacket end=\"w\"?>";

class MetadataTest : public FileTest, public ::testing::WithParamInterface<Carrier> {
protected:
    /// Some formats keep the terminating zero of a packet.
    static std::string withoutTail(std::string text) {
        text.erase(text.find_last_not_of(std::string("\0\n", 2)) + 1);
        return text;
    }

    std::string mPath = at(GetParam().file);
    Component mComponent = getComponent(paint(Content::SMOOTH, 3, Depth::BYTE));
};

} // namespace

TEST_P(MetadataTest, SavedPacketIsFound) {
    ASSERT_EQ(mComponent->setMetaData(PACKET.c_str()), tov::SUCCESS);
    ASSERT_EQ(mComponent->save(GetParam().format, mPath.c_str(), 0), tov::SUCCESS);
    EXPECT_EQ(withoutTail(xmpFromExifTool(mPath)), PACKET);
}

TEST_P(MetadataTest, StreamedPacketIsFound) {
    ASSERT_EQ(mComponent->setMetaData(PACKET.c_str()), tov::SUCCESS);
    const auto stream = qutil::FileOutputStream::create(mPath);
    ASSERT_EQ(mComponent->saveToStream(stream.get(), GetParam().format, 0), tov::SUCCESS);
    ASSERT_EQ(stream->close(), tov::SUCCESS);
    EXPECT_EQ(withoutTail(xmpFromExifTool(mPath)), PACKET);
}

TEST_P(MetadataTest, TheLastPacketCounts) {
    ASSERT_EQ(mComponent->setMetaData("<old/>"), tov::SUCCESS);
    ASSERT_EQ(mComponent->setMetaData(PACKET.c_str()), tov::SUCCESS);
    ASSERT_EQ(mComponent->save(GetParam().format, mPath.c_str(), 0), tov::SUCCESS);
    EXPECT_EQ(withoutTail(xmpFromExifTool(mPath)), PACKET);
}

TEST_P(MetadataTest, PacketSurvivesLoadingAndSaving) {
    ASSERT_EQ(mComponent->setMetaData(PACKET.c_str()), tov::SUCCESS);
    ASSERT_EQ(mComponent->save(GetParam().format, mPath.c_str(), 0), tov::SUCCESS);
    ASSERT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::SUCCESS);
    const std::string copy = at(std::string("copy-") + GetParam().file);
    ASSERT_EQ(mComponent->save(GetParam().format, copy.c_str(), 0), tov::SUCCESS);
    EXPECT_EQ(withoutTail(xmpFromExifTool(copy)), PACKET);
}

TEST_P(MetadataTest, NullPacketIsAnEmptyOne) {
    ASSERT_EQ(mComponent->setMetaData(PACKET.c_str()), tov::SUCCESS);
    ASSERT_EQ(mComponent->setMetaData(nullptr), tov::SUCCESS);
    ASSERT_EQ(mComponent->save(GetParam().format, mPath.c_str(), 0), tov::SUCCESS);
    EXPECT_EQ(withoutTail(xmpFromExifTool(mPath)), "");
    EXPECT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::SUCCESS);
}

INSTANTIATE_TEST_SUITE_P(Formats, MetadataTest,
                         ::testing::Values(Carrier{"Png", "a.png", FIF_PNG}, Carrier{"Jpeg", "a.jpg", FIF_JPEG},
                                           Carrier{"Tiff", "a.tif", FIF_TIFF}),
                         CaseName());

TEST(MetadataOfNothingTest, IsRefused) {
    EXPECT_EQ(makeComponent()->setMetaData(PACKET.c_str()), tov::FAILURE);
    EXPECT_EQ(makeComponent()->setMetaData(nullptr), tov::FAILURE);
}

} // namespace zqx::img::test
