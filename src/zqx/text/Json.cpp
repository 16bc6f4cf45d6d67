// RapidJSON does the layout and formats numbers; strings are escaped here, since RapidJSON passes invalid UTF-8
// through.
#include "zqx/text/Json.h"

#include <cmath>
#include <variant>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "zqx/text/Hexadecimal.h"
#include "zqx/text/Numbers.h"
#include "zqx/text/Utf8.h"

namespace zqx::text {

namespace {

using Buffer = rapidjson::StringBuffer;
using LineWriter = rapidjson::Writer<Buffer>;
using IndentingWriter = rapidjson::PrettyWriter<Buffer>;

void appendUnit(std::string& text, char32_t unit) {
    text += "\\u" + hexadecimal(unit, 4);
}

void appendEscaped(std::string& text, char32_t code) {
    switch (code) {
    case '\b': text += "\\b"; return;
    case '\f': text += "\\f"; return;
    case '\n': text += "\\n"; return;
    case '\r': text += "\\r"; return;
    case '\t': text += "\\t"; return;
    default: break;
    }
    if (code < 0x10000) {
        appendUnit(text, code);
    } else { // a pair of surrogates, as in UTF-16
        appendUnit(text, 0xD800U + ((code - 0x10000U) >> 10U));
        appendUnit(text, 0xDC00U + ((code - 0x10000U) & 0x3FFU));
    }
}

} // namespace

std::string jsonString(std::string_view text, Charset charset) {
    std::string result = "\"";
    result.reserve(text.size() + 2);
    while (!text.empty()) {
        const char32_t code = takeCharacter(text).code;
        if (code == '"' || code == '\\') {
            result += '\\';
            result += static_cast<char>(code);
        } else if (!isHarmless(code) || (charset == Charset::ASCII && code >= 0x80)) {
            appendEscaped(result, code);
        } else {
            appendUtf8(result, code);
        }
    }
    return result + '"';
}

struct JsonWriter::State {
    explicit State(const JsonLayout& layout) {
        if (layout.indent == 0) {
            writer.emplace<LineWriter>(buffer).SetMaxDecimalPlaces(layout.decimals);
            return;
        }
        IndentingWriter& indenting = writer.emplace<IndentingWriter>(buffer);
        indenting.SetIndent(' ', layout.indent);
        indenting.SetMaxDecimalPlaces(layout.decimals);
        indenting.SetFormatOptions(layout.arraysInOneLine ? rapidjson::kFormatSingleLineArray
                                                          : rapidjson::kFormatDefault);
    }

    /// Writes text that already is JSON.
    void write(const std::string& json, rapidjson::Type type) {
        visit([&](auto& w) { w.RawValue(json.data(), json.size(), type); });
    }

    template <typename Function>
    void visit(Function function) {
        std::visit(
            [&](auto& w) {
                if constexpr (!std::is_same_v<std::decay_t<decltype(w)>, std::monostate>) {
                    function(w);
                }
            },
            writer);
    }

    Buffer buffer;
    std::variant<std::monostate, LineWriter, IndentingWriter> writer;
};

JsonWriter::JsonWriter(const JsonLayout& layout) : mState(std::make_unique<State>(layout)) {
}

JsonWriter::~JsonWriter() = default;

void JsonWriter::beginObject() {
    mState->visit([](auto& w) { w.StartObject(); });
}

void JsonWriter::endObject() {
    mState->visit([](auto& w) { w.EndObject(); });
}

void JsonWriter::beginArray() {
    mState->visit([](auto& w) { w.StartArray(); });
}

void JsonWriter::endArray() {
    mState->visit([](auto& w) { w.EndArray(); });
}

void JsonWriter::key(std::string_view name) {
    mState->write(jsonString(name), rapidjson::kStringType);
}

void JsonWriter::value(std::string_view text) {
    mState->write(jsonString(text), rapidjson::kStringType);
}

void JsonWriter::value(double number) {
    if (std::isfinite(number)) {
        mState->visit([number](auto& w) { w.Double(number); });
    } else {
        null();
    }
}

void JsonWriter::value(bool is) {
    mState->visit([is](auto& w) { w.Bool(is); });
}

void JsonWriter::null() {
    mState->visit([](auto& w) { w.Null(); });
}

void JsonWriter::shortNumber(double number) {
    if (std::isfinite(number)) {
        mState->write(shortest(number), rapidjson::kNumberType);
    } else {
        null();
    }
}

void JsonWriter::writeSigned(std::int64_t number) {
    mState->visit([number](auto& w) { w.Int64(number); });
}

void JsonWriter::writeUnsigned(std::uint64_t number) {
    mState->visit([number](auto& w) { w.Uint64(number); });
}

std::string JsonWriter::text() const {
    return {mState->buffer.GetString(), mState->buffer.GetSize()};
}

} // namespace zqx::text
