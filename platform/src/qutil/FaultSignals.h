// Where processor faults are translated out of signals. The address and thread sanitizers explain a fault better than
// an exception could.
#pragma once

#if defined(__linux__) && defined(__GNUC__) && !defined(__clang__) && (defined(__x86_64__) || defined(__aarch64__)) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ZQX_FAULT_SIGNALS
#endif
