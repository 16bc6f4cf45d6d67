// Parses name patterns and fills in their fields.
#include <zqx/tools/NameTemplate.h>

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/FileNames.h"
#include "zqx/text/Width.h"

namespace zqx::tools {

using namespace pictures;

namespace fs = std::filesystem;

namespace {

constexpr const char* OPTION = "--name";
constexpr const char* FIELDS = "{stem}, {ext}, {n}, {n:04} and {dir}";

} // namespace

NameTemplate::NameTemplate(std::string_view pattern) {
    while (!pattern.empty()) {
        const char letter = pattern.front();
        if (pattern.starts_with("{{") || pattern.starts_with("}}")) {
            addText(letter);
            pattern.remove_prefix(2);
        } else if (letter == '{') {
            const std::size_t end = pattern.find('}');
            if (end == std::string_view::npos) {
                throw UsageError(OPTION, "a { is not closed; write {{ for the brace itself");
            }
            mPieces.push_back(parseField(pattern.substr(1, end - 1)));
            pattern.remove_prefix(end + 1);
        } else if (letter == '}') {
            throw UsageError(OPTION, "there is a } without a {; write }} for the brace itself");
        } else {
            addText(letter);
            pattern.remove_prefix(1);
        }
    }
}

void NameTemplate::addText(char letter) {
    if (mPieces.empty() || mPieces.back().field != Field::TEXT) {
        mPieces.push_back({Field::TEXT, {}});
    }
    mPieces.back().text += letter;
}

NameTemplate::Piece NameTemplate::parseField(std::string_view name) {
    constexpr std::size_t WIDEST = 20; // more digits than any number has
    if (name == "stem") {
        return {Field::STEM, {}};
    }
    if (name == "ext") {
        return {Field::EXTENSION, {}};
    }
    if (name == "dir") {
        return {Field::FOLDER, {}};
    }
    if (name == "n") {
        return {Field::NUMBER, {}};
    }
    if (name.starts_with("n:0")) {
        std::size_t width = 0;
        const auto [end, failure] = std::from_chars(name.data() + 3, name.data() + name.size(), width);
        if (failure == std::errc() && end == name.data() + name.size() && width <= WIDEST) {
            return {Field::NUMBER, {}, width};
        }
    }
    throw UsageError(OPTION, "unknown field {" + std::string(name) + "}; the fields are " + FIELDS);
}

std::string NameTemplate::expandPiece(const Piece& piece, const Input& input, std::size_t number) {
    const fs::path path = toPath(input.name);
    switch (piece.field) {
    case Field::STEM: return toName(path.stem());
    case Field::EXTENSION: return path.has_extension() ? toName(path.extension()).substr(1) : std::string();
    case Field::FOLDER: return input.folder;
    case Field::NUMBER: return text::padded(std::to_string(number), piece.width, text::Align::RIGHT, '0');
    case Field::TEXT: break;
    }
    return piece.text;
}

std::string NameTemplate::expand(const Input& input, std::size_t number) const {
    std::string name;
    for (const Piece& piece : mPieces) {
        name += expandPiece(piece, input, number);
    }
    fs::path result;
    for (const fs::path& part : toPath(name).relative_path()) {
        if (part == "..") {
            throw UsageError(OPTION, "leads out of the output folder with \"..\"; choose another --output-dir instead");
        }
        if (!part.empty() && part != ".") {
            result /= part;
        }
    }
    if (name.empty() || name.ends_with('/') || result.empty()) {
        throw UsageError(OPTION, "gives no file name for " + input.name);
    }
    return toName(result);
}

bool NameTemplate::usesExtension() const {
    return std::ranges::any_of(mPieces, [](const Piece& piece) { return piece.field == Field::EXTENSION; });
}

} // namespace zqx::tools
