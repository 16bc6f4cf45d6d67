/// @file
/// How the library works in this process: threads, instruction set, version.
#pragma once

#include <zqx/img/Export.h>

namespace zqx::img {

/// Processors at the library's disposal: those that the system lets the process use, or as many as OMP_NUM_THREADS
/// asked for when the library was loaded. At least 1, and not changed by setThreadCount().
/// @ingroup image
ZQX_IMG_API unsigned availableProcessors();

/// Chooses how many threads the rows of a picture are spread over in operations that the calling thread begins.
///
/// It is the thread's OpenMP setting, so whatever else on this thread runs in parallel with OpenMP follows it. Other
/// threads keep theirs; new ones begin with availableProcessors(). Results are the same bytes for any number.
/// @param count how many; 0 for availableProcessors()
/// @ingroup image
ZQX_IMG_API void setThreadCount(unsigned count);

/// How many threads operations of the calling thread are spread over, itself included.
/// @ingroup image
ZQX_IMG_API unsigned threadCount();

/// The instruction set that pixels are worked on with: the best one of those compiled for that the processor has, such
/// as "AVX2" or "NEON". Static memory. Results are the same bytes on all of them.
/// @ingroup image
ZQX_IMG_API const char* instructionSet();

/// The version of the library that runs, such as "1.0.0"; static memory. It may be newer than the headers, see
/// ZQX_IMG_VERSION.
/// @ingroup image
ZQX_IMG_API const char* runtimeVersion();

} // namespace zqx::img
