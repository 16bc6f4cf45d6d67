/// @file
/// The component runtime: which module holds which class, comparison of identifiers, memory that changes owners.
#pragma once

#include <cstddef>

#include <tov/Export.h>
#include <tov/Result.h>

namespace tov {

/// Notes that a module holds a class. The registry lives in the process; the functions are thread-safe.
/// @param clsid class identifier; copied. @param module the number its loader gave the module, not 0.
/// @param flags passed through by modules for their loaders; without effect here.
/// @return SUCCESS, also when the same module registers again; FAILURE when another module holds the class;
///         INVALID_ARGUMENT for a null identifier or module 0.
ZQX_PLATFORM_API Result tovRegisterDSO(const char* clsid, unsigned int module, unsigned int flags);

/// Forgets a class of a module. @return SUCCESS; FAILURE when this module does not hold the class; INVALID_ARGUMENT.
ZQX_PLATFORM_API Result tovUnregisterDSO(const char* clsid, unsigned int module, unsigned int flags);

/// The number of the module that holds a class, or 0.
ZQX_PLATFORM_API unsigned int tovFindDSO(const char* clsid);

/// 0 for equal class identifiers. They are numbers written in hexadecimal, so upper and lower case are equal; null
/// equals only null.
ZQX_PLATFORM_API int tovCompareCLSID(const char* first, const char* second);

/// 0 for equal interface identifiers: the same characters, or both null.
ZQX_PLATFORM_API int tovCompareIID(const char* first, const char* second);

/// A copy that the caller frees with tovFree; null for null and when memory is short.
ZQX_PLATFORM_API char* tovStrDup(const char* text);

/// Zeroed memory for count elements of size bytes, to be freed with tovFree, be it in another module; never null for
/// an empty request, null when memory is short or the product overflows.
ZQX_PLATFORM_API void* tovCalloc(std::size_t count, std::size_t size);

/// Frees what tovCalloc and tovStrDup returned; null is allowed.
ZQX_PLATFORM_API void tovFree(void* memory);

} // namespace tov
