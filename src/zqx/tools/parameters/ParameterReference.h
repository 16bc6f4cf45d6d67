// What there is to know about the adjustments, for people and for programs, all from the one table.
#pragma once

#include <string>

namespace zqx::tools {

/// Every adjustment with name, range, default, place in the document and meaning, in lines of at most 100 characters.
std::string explainParameters();

/// The same as one JSON object.
std::string explainParametersAsJson();

/// A JSON Schema (draft 2020-12) of the parameter document.
std::string parameterSchema();

} // namespace zqx::tools
