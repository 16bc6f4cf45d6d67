// Writing JSON: whatever is put in, what comes out is JSON, in valid UTF-8, and nothing in it steers a terminal.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "zqx/text/Cleaning.h"

namespace zqx::text {

/// The text as a string of JSON, quotation marks included. Bytes that are not UTF-8 become U+FFFD; what is not harmless
/// to a terminal is escaped.
/// @param charset ASCII: all else beyond it is escaped, too
std::string jsonString(std::string_view text, Charset charset = Charset::UNICODE);

/// How a document is laid out.
struct JsonLayout {
    unsigned indent = 0; ///< spaces for each level; 0 puts all in one line
    bool arraysInOneLine = false;
    int decimals = 324; ///< the most behind the point of a number; 324 keeps every double exact
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
    /// Null where it is infinite or no number, for which JSON has no words.
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
    /// In the fewest digits: 5 where value() writes 5.0.
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
