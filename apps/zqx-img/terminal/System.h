// What the program asks of the operating system about its terminal, its standard streams and its end. There is one
// source for each system.
#pragma once

#include <optional>

#include "terminal/TerminalPicture.h"

namespace zqx::app {

enum class StandardStream { OUTPUT, ERRORS };

/// True when a person reads the stream, not a file or another program.
bool isTerminal(StandardStream stream);

/// The size of the window, where there is one and it tells; cells are 0 by 0 where only their number is known.
std::optional<TerminalSize> windowSize(StandardStream stream);

/// True when the terminal understands escape sequences.
bool obeysEscapes(StandardStream stream);

/// False for a job in the background, which would write over what its user does meanwhile.
bool isInForeground();

/// True when terminals show UTF-8, going by the locale, or on Windows by the code page of the console.
bool showsUnicode();

/// Makes sure that writing to a stream which is closed fails, whatever happens: to one that the program was started
/// without, where otherwise a file that is opened later would take its place, and to a pipe that nobody reads.
void prepareStandardStreams();

/// Has a function called when the user or the system asks the program to end (Ctrl-C and the like), on a thread of its
/// own, with the exit code that this asks for: 128 + the signal's number. What the program was started deaf to (nohup)
/// does not count. To be called once, before there are other threads.
void watchForEnd(void (*end)(int exitCode));

} // namespace zqx::app
