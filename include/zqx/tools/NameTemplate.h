/// @file
/// Names of output files, made from a pattern: "{dir}/{stem}_{n:04}.png".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <zqx/tools/Export.h>
#include <zqx/tools/InputList.h>

namespace zqx::tools {

/// A parsed pattern.
///
/// Its fields are {stem} and {ext} of the input's name, {n} the picture's number in the run, {n:04} the same with zeros
/// in front, and {dir} the input's folder below the folder that was named. A brace itself is written twice.
/// @ingroup tools
class ZQX_TOOLS_EXPORT NameTemplate {
public:
    /// @throws pictures::UsageError saying what is wrong with the pattern
    explicit NameTemplate(std::string_view pattern);

    /// The name below the output folder, with single slashes.
    /// @param input what the names are made of
    /// @param number of the picture in the run, from 1
    /// @throws pictures::UsageError when it would be no name of a file there
    std::string expand(const Input& input, std::size_t number) const;

    /// Whether the input's own extension is part of the names.
    bool usesExtension() const;

private:
    enum class Field {
        TEXT,      ///< as it stands
        STEM,      ///< {stem}
        EXTENSION, ///< {ext}
        NUMBER,    ///< {n}, {n:04}
        FOLDER,    ///< {dir}
    };
    struct Piece {
        Field field;
        std::string text;      // of TEXT
        std::size_t width = 0; // of NUMBER: filled up with zeros
    };

    void addText(char letter);
    static Piece parseField(std::string_view name);
    static std::string expandPiece(const Piece& piece, const Input& input, std::size_t number);

    std::vector<Piece> mPieces;
};

} // namespace zqx::tools
