/// @file
/// Descriptions of all adjustments, for people and for programs.
#pragma once

#include <string>

#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Every adjustment with its name, range, default, path in the document and meaning, in lines of at most 100
/// characters.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string explainParameters();

/// The same information as a JSON object.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string explainParametersAsJson();

/// A table of the adjustments' names, ranges, defaults and meanings.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string describeParameters();

/// A JSON Schema (draft 2020-12) of the parameter document.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string parameterSchema();

} // namespace zqx::tools
