// Records as programs and people read them.
#include <gtest/gtest.h>

#include <rapidjson/document.h>

#include <zqx/tools/PictureRecord.h>

namespace zqx::tools {

namespace {

using Status = PictureRecord::Status;

rapidjson::Document parse(const std::string& line) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag>(line.c_str());
    EXPECT_FALSE(document.HasParseError()) << line;
    EXPECT_EQ(line.find('\n'), std::string::npos);
    return document;
}

} // namespace

TEST(PictureRecordTest, WrittenPictureHasItsSizeAndTimes) {
    PictureRecord record{"a.png", "out/a.png", Status::WRITTEN, "", {"a.png: odd"}};
    record.result = {4000, 3000, "8-bit colour", {0.5, 0.25, 0.125, 1.0}};
    const rapidjson::Document document = parse(toJson(record));
    EXPECT_STREQ(document["input"].GetString(), "a.png");
    EXPECT_STREQ(document["output"].GetString(), "out/a.png");
    EXPECT_STREQ(document["status"].GetString(), "written");
    EXPECT_EQ(document["width"].GetUint(), 4000U);
    EXPECT_EQ(document["height"].GetUint(), 3000U);
    EXPECT_STREQ(document["depth"].GetString(), "8-bit colour");
    EXPECT_EQ(document["seconds"]["decode"].GetDouble(), 0.5);
    EXPECT_EQ(document["seconds"]["adjust"].GetDouble(), 0.25);
    EXPECT_EQ(document["seconds"]["encode"].GetDouble(), 0.125);
    EXPECT_EQ(document["seconds"]["store"].GetDouble(), 1.0);
    ASSERT_EQ(document["warnings"].Size(), 1U);
    EXPECT_STREQ(document["warnings"][0].GetString(), "a.png: odd");
    EXPECT_FALSE(document.HasMember("reason"));
}

TEST(PictureRecordTest, FailedPictureHasItsReasonAndNoSize) {
    const rapidjson::Document document = parse(toJson({"a\"\n.png", "", Status::FAILED, "why \\ not"}));
    EXPECT_STREQ(document["input"].GetString(), "a\"\n.png");
    EXPECT_STREQ(document["status"].GetString(), "failed");
    EXPECT_STREQ(document["reason"].GetString(), "why \\ not");
    EXPECT_FALSE(document.HasMember("output"));
    EXPECT_FALSE(document.HasMember("width"));
    EXPECT_EQ(document["warnings"].Size(), 0U);
}

TEST(PictureRecordTest, NamesThatAreNoTextBecomeText) {
    const rapidjson::Document document =
        parse(toJson({"日本\xFF.png", "\xE6\x97", Status::SKIPPED, "\xC0\x80x", {"\xF0\x9F\x93\xB7 ok"}}));
    EXPECT_STREQ(document["input"].GetString(), "日本\uFFFD.png");
    EXPECT_STREQ(document["output"].GetString(), "\uFFFD\uFFFD");
    EXPECT_STREQ(document["reason"].GetString(), "\uFFFD\uFFFDx");
    EXPECT_STREQ(document["warnings"][0].GetString(), "📷 ok");
}

TEST(PictureRecordTest, SummaryHasTheCounts) {
    const rapidjson::Document document = parse(toJson(RunTotals{5, 2, 1, 0}, 1.5, true));
    EXPECT_EQ(document["summary"]["written"].GetUint(), 5U);
    EXPECT_EQ(document["summary"]["failed"].GetUint(), 2U);
    EXPECT_EQ(document["summary"]["skipped"].GetUint(), 1U);
    EXPECT_EQ(document["summary"]["planned"].GetUint(), 0U);
    EXPECT_EQ(document["summary"]["seconds"].GetDouble(), 1.5);
    EXPECT_TRUE(document["summary"]["interrupted"].GetBool());
}

TEST(PictureRecordTest, SummaryHasTheFilesThatCannotBeReadByExtension) {
    RunTotals totals;
    EXPECT_EQ(parse(toJson(totals, 1.5, false))["summary"]["unreadable"].MemberCount(), 0U);
    totals.unreadable = {{"heic", 10}, {"avif", 2}};
    const rapidjson::Document document = parse(toJson(totals, 1.5, false));
    EXPECT_EQ(document["summary"]["unreadable"][".heic"].GetUint(), 10U);
    EXPECT_EQ(document["summary"]["unreadable"][".avif"].GetUint(), 2U);
}

TEST(PictureRecordTest, SummaryInWordsCountsWorkedPicturesForItsRate) {
    EXPECT_EQ(describe(RunTotals{198, 2, 50, 0}, 12.5),
              "198 written, 2 failed, 50 skipped in 12.5 s (16.0 pictures/s)");
    EXPECT_EQ(describe(RunTotals{0, 0, 3, 0}, 0.04), "0 written, 0 failed, 3 skipped in 0.0 s");
}

TEST(PictureRecordTest, TimesInWordsEndWithTheRate) {
    EXPECT_EQ(describe(ApplyResult{2000, 1000, "float grey", {0.25, 0.25, 0.25, 0.25}}),
              "2000 x 1000, float grey, decode 0.250, adjust 0.250, encode 0.250, store 0.250 s, 2.0 megapixels/s");
}

TEST(RunTotalsTest, CountsEachKind) {
    RunTotals totals;
    for (const Status status : {Status::WRITTEN, Status::FAILED, Status::FAILED, Status::SKIPPED, Status::PLANNED}) {
        totals.count(status);
    }
    EXPECT_EQ(totals.written, 1U);
    EXPECT_EQ(totals.failed, 2U);
    EXPECT_EQ(totals.skipped, 1U);
    EXPECT_EQ(totals.planned, 1U);
    EXPECT_EQ(totals.all(), 5U);
}

} // namespace zqx::tools
