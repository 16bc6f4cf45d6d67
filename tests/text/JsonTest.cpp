// Whatever strings and numbers go in, a parser gets back what they were, from valid UTF-8.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include <rapidjson/document.h>

#include "zqx/text/Json.h"
#include "zqx/text/Utf8.h"

namespace zqx::text {

namespace {

rapidjson::Document parse(const std::string& json) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag>(json.data(), json.size());
    EXPECT_FALSE(document.HasParseError()) << json;
    return document;
}

std::string readBack(const std::string& json) {
    const rapidjson::Document document = parse(json);
    return document.IsString() ? std::string(document.GetString(), document.GetStringLength()) : "no string: " + json;
}

} // namespace

TEST(JsonTest, PlainStringsAreQuoted) {
    EXPECT_EQ(jsonString("a b/c"), R"("a b/c")");
    EXPECT_EQ(jsonString("日本 é"), "\"日本 é\"");
}

TEST(JsonTest, SpecialCharactersAreEscaped) {
    EXPECT_EQ(jsonString("\"\\\b\f\n\r\t"), R"("\"\\\b\f\n\r\t")");
    EXPECT_EQ(jsonString("\x1B[2J"), R"("\u001B[2J")");
    EXPECT_EQ(jsonString(std::string_view("\0", 1)), R"("\u0000")");
}

TEST(JsonTest, WhatATerminalWouldObeyIsEscaped) {
    EXPECT_EQ(jsonString("\x7F\xC2\x9B\xE2\x80\xAE"), R"("\u007F\u009B\u202E")");
}

TEST(JsonTest, StrayBytesBecomeReplacementCharacters) {
    EXPECT_EQ(jsonString("a\xFF"
                         "b\xE6\x97"),
              "\"a\uFFFDb\uFFFD\uFFFD\"");
}

TEST(JsonTest, AsciiStringsEscapeAllElse) {
    EXPECT_EQ(jsonString("é日📷", Charset::ASCII), R"("\u00E9\u65E5\uD83D\uDCF7")");
}

TEST(JsonTest, EveryCharacterIsReadBack) {
    for (char32_t code = 0; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 0x101) {
        if (code >= 0xD800 && code <= 0xDFFF) {
            continue;
        }
        std::string text;
        appendUtf8(text, code);
        ASSERT_EQ(readBack(jsonString(text)), text);
        ASSERT_EQ(readBack(jsonString(text, Charset::ASCII)), text);
    }
}

TEST(JsonTest, EveryByteGivesAValidDocument) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text{'a', static_cast<char>(byte)};
        ASSERT_EQ(readBack(jsonString(text)), repairedUtf8(text));
    }
}

TEST(JsonTest, DocumentInOneLine) {
    JsonWriter json;
    json.beginObject();
    json.member("name", "a\nb");
    json.member("count", std::size_t{3});
    json.member("below", -2);
    json.member("half", 0.5);
    json.member("whole", 1.0);
    json.member("yes", true);
    json.key("list");
    json.beginArray();
    json.value(1);
    json.value(std::string("x"));
    json.null();
    json.endArray();
    json.endObject();
    EXPECT_EQ(json.text(),
              R"({"name":"a\nb","count":3,"below":-2,"half":0.5,"whole":1.0,"yes":true,"list":[1,"x",null]})");
}

TEST(JsonTest, DocumentInIndentedLines) {
    JsonWriter json({.indent = 2});
    json.beginObject();
    json.key("a");
    json.beginArray();
    json.value(1);
    json.value(2);
    json.endArray();
    json.endObject();
    EXPECT_EQ(json.text(), "{\n  \"a\": [\n    1,\n    2\n  ]\n}");
}

TEST(JsonTest, ArraysStayInOneLineWhereAskedFor) {
    JsonWriter json({.indent = 4, .arraysInOneLine = true});
    json.beginObject();
    json.key("a");
    json.beginArray();
    json.value(1);
    json.value(2);
    json.endArray();
    json.endObject();
    EXPECT_EQ(json.text(), "{\n    \"a\": [1, 2]\n}");
}

TEST(JsonTest, NamesOfMembersAreEscapedToo) {
    JsonWriter json;
    json.beginObject();
    json.member("a\"\xFF", 1);
    json.endObject();
    EXPECT_EQ(json.text(), "{\"a\\\"\uFFFD\":1}");
}

TEST(JsonTest, NumbersThatJsonHasNotAreNull) {
    JsonWriter json;
    json.beginArray();
    json.value(std::numeric_limits<double>::infinity());
    json.value(-std::numeric_limits<double>::infinity());
    json.value(std::numeric_limits<double>::quiet_NaN());
    json.shortNumber(std::numeric_limits<double>::infinity());
    json.endArray();
    EXPECT_EQ(json.text(), "[null,null,null,null]");
}

TEST(JsonTest, DecimalsAreLimited) {
    JsonWriter json({.decimals = 3});
    json.beginArray();
    json.value(0.123456);
    json.value(0.0001);
    json.endArray();
    const rapidjson::Document document = parse(json.text());
    EXPECT_EQ(document[0].GetDouble(), 0.123);
    EXPECT_EQ(document[1].GetDouble(), 0.0);
}

TEST(JsonTest, LargestIntegersAreExact) {
    JsonWriter json;
    json.beginArray();
    json.value(std::numeric_limits<std::uint64_t>::max());
    json.value(std::numeric_limits<std::int64_t>::min());
    json.endArray();
    EXPECT_EQ(json.text(), "[18446744073709551615,-9223372036854775808]");
}

TEST(JsonTest, ShortNumbersHaveNoNeedlessDigits) {
    JsonWriter json;
    json.beginArray();
    json.shortNumber(5.0);
    json.shortNumber(0.1);
    json.endArray();
    EXPECT_EQ(json.text(), "[5,0.1]");
}

} // namespace zqx::text
