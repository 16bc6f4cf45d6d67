/// @file
/// File names from a pattern such as "{dir}/{stem}_{n:04}.png".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <zqx/tools/Export.h>
#include <zqx/tools/InputList.h>

namespace zqx::tools {

/// A parsed pattern for the names of output files.
///
/// Its fields are {stem} and {ext}, the input's file name without its extension and the extension; {n}, the number of
/// the picture in the run; {n:04}, the same padded with zeros; and {dir}, the folder of the input relative to the given
/// one. Literal braces are doubled.
/// @ingroup tools
class ZQX_TOOLS_EXPORT NameTemplate {
public:
    /// @throws pictures::UsageError saying what is wrong with the pattern
    explicit NameTemplate(std::string_view pattern);

    /// Fills in the fields.
    /// @param input the picture that the name is for
    /// @param number of the picture in the run, from 1
    /// @return the name relative to the output folder, with single slashes
    /// @throws pictures::UsageError if the result is not the name of a file inside the output folder
    std::string expand(const Input& input, std::size_t number) const;

    /// Whether the pattern contains {ext}.
    bool usesExtension() const;

private:
    enum class Field {
        TEXT,      ///< literal text
        STEM,      ///< {stem}
        EXTENSION, ///< {ext}
        NUMBER,    ///< {n}, {n:04}
        FOLDER,    ///< {dir}
    };
    struct Piece {
        Field field;
        std::string text;      // of TEXT
        std::size_t width = 0; // of NUMBER: padded with zeros
    };

    void addText(char letter);
    static Piece parseField(std::string_view name);
    static std::string expandPiece(const Piece& piece, const Input& input, std::size_t number);

    std::vector<Piece> mPieces;
};

} // namespace zqx::tools
