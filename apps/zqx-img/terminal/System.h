// System-dependent functions for terminals, standard streams and interruptions. There is one source for each system.
#pragma once

#include <optional>

#include "terminal/TerminalPicture.h"

namespace zqx::app {

enum class StandardStream { OUTPUT, ERRORS };

/// Whether a stream is a terminal, rather than a file or a pipe.
bool isTerminal(StandardStream stream);

/// The size of the terminal window if it is known. Cells are 0 by 0 if only their number is known.
std::optional<TerminalSize> windowSize(StandardStream stream);

/// Whether the terminal understands escape sequences.
bool obeysEscapes(StandardStream stream);

/// False for a background job, whose output would disturb what the user does in the terminal meanwhile.
bool isInForeground();

/// Whether the terminal displays UTF-8, according to the locale or, on Windows, the code page of the console.
bool showsUnicode();

/// Makes writing to a closed stream fail in an orderly way: both for standard streams with which the program was not
/// started, whose descriptors would otherwise be reused for files opened later, and for pipes that nobody reads.
void prepareStandardStreams();

/// Calls a function, on a thread of its own, when the user or the system asks the program to end (Ctrl-C and the like).
/// Its argument is the exit code, 128 plus the number of the signal. Signals that were ignored when the program was
/// started (nohup) remain ignored. To be called once, before other threads are started.
void watchForEnd(void (*end)(int exitCode));

} // namespace zqx::app
