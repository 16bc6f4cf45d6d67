// Writing JSON. Whatever the input, the output is valid JSON in valid UTF-8, without characters that a terminal
// interprets.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "zqx/text/Cleaning.h"

namespace zqx::text {

/// The text as a JSON string, including the quotation marks. Bytes that are not UTF-8 become U+FFFD; characters that
/// are not harmless to a terminal are escaped.
/// @param charset with ASCII, all other characters are escaped as well
std::string jsonString(std::string_view text, Charset charset = Charset::UNICODE);

/// How a document is laid out.
struct JsonLayout {
    unsigned indent = 0; ///< spaces per level; 0 for a single line
    bool arraysInOneLine = false;
    int decimals = 324; ///< maximum number of decimal places; 324 keeps every double exact
};

/// Writes one document, from the outside in.
class JsonWriter {
public:
    explicit JsonWriter(const JsonLayout& layout = {});
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;
    ~JsonWriter();

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    void key(std::string_view name);

    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text)); }
    void value(const std::string& text) { value(std::string_view(text)); }
    /// Infinity and NaN, which JSON does not have, become null.
    void value(double number);
    void value(bool is);
    template <typename Integer>
    requires std::is_integral_v<Integer>
    void value(Integer number) {
        if constexpr (std::is_signed_v<Integer>) {
            writeSigned(number);
        } else {
            writeUnsigned(number);
        }
    }
    void null();
    /// A number in as few digits as possible: 5 where value() writes 5.0.
    void shortNumber(double number);

    template <typename Value>
    void member(std::string_view name, const Value& content) {
        key(name);
        value(content);
    }

    /// The document so far, without a line break at its end.
    std::string text() const;

private:
    void writeSigned(std::int64_t number);
    void writeUnsigned(std::uint64_t number);

    struct State;
    std::unique_ptr<State> mState;
};

} // namespace zqx::text
