// A process that decodes one file: started, watched, and ended with everything that it may have started itself.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/isolation/DecodeRequest.h"

namespace zqx::pictures {

struct DecoderEnd {
    bool tookTooLong = false;
    int signal = 0;   ///< that ended it, or 0
    int exitCode = 0; ///< where no signal did; 0 where nobody knows
};

/// Runs the decoder and waits until it is gone, which it is soon after its time is over, whatever it does.
/// @param program the executable file
/// @param file    descriptor of the picture file
/// @param result  descriptor of what it writes to
/// @throws std::system_error when it cannot be started or watched
DecoderEnd runDecoder(const std::string& program, const DecodeRequest& request, int file, int result);

/// The decoder's executable: beside the running program, or where it is installed. @throws Error naming the file to be
/// decoded, and telling where the decoder was looked for
std::string findDecoder(const std::string& subject);

} // namespace zqx::pictures
