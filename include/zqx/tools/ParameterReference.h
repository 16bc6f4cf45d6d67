/// @file
/// What there is to know about the adjustments, for people and for programs.
#pragma once

#include <string>

#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Every adjustment with name, range, default, place in the document and meaning, in lines of at most 100 characters.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string explainParameters();

/// The same as one JSON object.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string explainParametersAsJson();

/// A table of the adjustments' names, ranges, defaults and meanings.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string describeParameters();

/// A JSON Schema (draft 2020-12) of the parameter document.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string parameterSchema();

} // namespace zqx::tools
