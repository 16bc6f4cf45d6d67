// Checks parameter documents member by member and merges several of them into one.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::tools {

class Remarks;

/// A member that a parameter document may have.
struct DocumentMember {
    enum class Kind { OBJECT, PARAMETER, VERSION, SCHEMA };

    Kind kind;
    std::string name;
    std::string meaning;
    const Parameter* parameter = nullptr; ///< for parameters
    std::vector<DocumentMember> members;  ///< for objects
};

/// The outermost object of a parameter document, with every member that it may have.
const DocumentMember& documentRoot();

/// The version of the documents that are read and written.
constexpr int DOCUMENT_VERSION = 1;

/// The parameters of several documents; those of later documents replace those of earlier ones.
class MergedDocument {
public:
    MergedDocument();

    /// Merges one more document. Adds remarks about members that are unknown, repeated, of the wrong type or out of
    /// range, which are ignored or clamped.
    /// @param name of the document's file, for messages
    /// @throws Error if the text is not a document of this version, with line and column if it is not valid JSON
    void add(const std::string& name, std::string text, Remarks& remarks);

    /// Adds a remark if only one end of the gradient is given: the pipeline ignores it.
    void checkGradient(Remarks& remarks) const;

    /// The parameters as one document.
    std::string text() const;

private:
    struct Given {
        std::array<float, 4> numbers; ///< a colour's r, g, b, a; the other kinds use the first element
        std::string document;         ///< its file
    };
    friend class DocumentReader;
    friend class DocumentWriter;

    const std::optional<Given>& given(const Parameter& parameter) const;
    std::optional<Given>& given(const Parameter& parameter);

    std::vector<std::optional<Given>> mGiven; ///< in the order of the table
};

} // namespace zqx::tools
