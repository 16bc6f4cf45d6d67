/// @file
/// Lets the headers pass warnings that a program may ask its compiler for, where their reason does not hold.
#pragma once

/// @def ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS
/// Before classes with virtual functions whose destructors are not virtual on purpose: objects are destroyed through
/// their own type, and the table of virtual functions has no place for a destructor.
/// @ingroup filters

/// @def ZQX_IMG_END_PLAIN_DESTRUCTORS
/// After such classes: the warning is what the program wants it to be again.
/// @ingroup filters

#if defined(__GNUC__)
#define ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS                                                                                \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wnon-virtual-dtor\"")
#define ZQX_IMG_END_PLAIN_DESTRUCTORS _Pragma("GCC diagnostic pop")
#else
#define ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS
#define ZQX_IMG_END_PLAIN_DESTRUCTORS
#endif
