// The parameter document as the program reads it: checked member by member, and several laid over each other.
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
    const Parameter* parameter = nullptr; ///< of a parameter
    std::vector<DocumentMember> members;  ///< of an object
};

/// The outermost object of a parameter document, with all that may be in it.
const DocumentMember& documentRoot();

/// The version of the documents that are read and written.
constexpr int DOCUMENT_VERSION = 1;

/// The parameters of several documents, those of later ones in place of those of earlier ones.
class MergedDocument {
public:
    MergedDocument();

    /// Takes the parameters of one more document. Remarks on members that are not known, given twice, of the wrong type
    /// or outside their range: such members are ignored, or limited.
    /// @param name the document's file, for messages
    /// @throws Error for text that is not a document of this version, with the place where it is not even JSON
    void add(const std::string& name, std::string text, Remarks& remarks);

    /// Remarks on an end of the gradient whose other end no document gave. Its reader ignores it.
    void checkGradient(Remarks& remarks) const;

    /// The parameters as one document.
    std::string text() const;

private:
    struct Given {
        std::array<float, 4> numbers; ///< a colour's r, g, b, a; the other kinds use the first element
        std::string document;         ///< where it comes from
    };
    friend class DocumentReader;
    friend class DocumentWriter;

    const std::optional<Given>& given(const Parameter& parameter) const;
    std::optional<Given>& given(const Parameter& parameter);

    std::vector<std::optional<Given>> mGiven; ///< in the order of the table
};

} // namespace zqx::tools
