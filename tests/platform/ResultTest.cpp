// Result codes and their texts.
#include <tov/Result.h>

#include <gtest/gtest.h>

#include <qutil/StrError.h>

TEST(Result, FailuresAreTheNegativeCodes) {
    EXPECT_FALSE(tov::failed(tov::SUCCESS));
    EXPECT_FALSE(tov::failed(1));
    EXPECT_FALSE(tov::failed(0x7FFFFFFF));
    EXPECT_TRUE(tov::failed(0x80000000));
    EXPECT_TRUE(tov::failed(tov::INVALID_ARGUMENT));
    EXPECT_TRUE(tov::failed(tov::NO_AGGREGATION));
}

TEST(Result, EveryCodeHasAText) {
    EXPECT_STREQ(qutil::tovStrError(0), "Success");
    EXPECT_STREQ(qutil::tovStrError(0x80070057), "Invalid argument");
    EXPECT_STREQ(qutil::tovStrError(0x8000FFFF), "Unexpected failure");
    EXPECT_STREQ(qutil::tovStrError(0x80004002), "No such interface");
    EXPECT_STREQ(qutil::tovStrError(0x80004005), "Operation failed");
    EXPECT_STREQ(qutil::tovStrError(0x80000100), "Object not ready");
    EXPECT_STREQ(qutil::tovStrError(0x80000101), "Operation not supported");
    EXPECT_STREQ(qutil::tovStrError(0x96240010), "Aggregation not supported");
    EXPECT_STREQ(qutil::tovStrError(0x96240012), "Class not available");
}

TEST(Result, OtherCodesAreUnknown) {
    EXPECT_STREQ(qutil::tovStrError(1), "Unknown result code");
    EXPECT_STREQ(qutil::tovStrError(0xFFFFFFFF), "Unknown result code");
}
