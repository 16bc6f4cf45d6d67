// How the test libraries export plain C functions.
#pragma once

#if defined(_WIN32)
#define ZQX_TEST_EXPORT extern "C" __declspec(dllexport)
#else
#define ZQX_TEST_EXPORT extern "C" __attribute__((visibility("default")))
#endif
