// How a test steers the stand-in of OpenImageDenoise: environment variables, which it reads at every call, as the two
// share nothing but their process.
#pragma once

/// The file that every call is appended to, a line each.
inline constexpr const char* STAND_IN_CALLS = "STAND_IN_CALLS";

/// What fails: "device" (none can be made), "processor" (none of that type), "filter" (none can be made), "commit" (of
/// the device) or "execution".
inline constexpr const char* STAND_IN_FAILURE = "STAND_IN_FAILURE";

/// The error reported with the failure: its text, empty for an error without a text; unset for no error at all.
inline constexpr const char* STAND_IN_MESSAGE = "STAND_IN_MESSAGE";

/// When set, the default device is one that cannot read the memory of the system (version 2 only).
inline constexpr const char* STAND_IN_OWN_MEMORY = "STAND_IN_OWN_MEMORY";
