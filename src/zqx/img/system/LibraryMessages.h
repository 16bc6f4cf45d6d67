// What the image library says about a file: gathered for the thread that it is said on, and kept off the terminal.
//
// There is one of this in a process, since FreeImage has one place to be listened to: zqx_pictures, which uses
// FreeImage too, finds it here. It is exported for that library alone, and no interface for others.
#pragma once

#include <string>

#include <zqx/img/Export.h>

#include "system/TiffMessages.h"

namespace zqx::img {

/// Gathers what FreeImage says on this thread while it lives. One at a time on a thread, around calls of FreeImage and
/// nothing else: what a host's stream says when it is called is not about our file.
class ZQX_IMG_API LibraryMessages {
public:
    /// Forgets what was gathered before.
    LibraryMessages();
    ~LibraryMessages();
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;

    /// Forgets what was gathered on this thread.
    static void forget();

    /// What was said on this thread while the present or the last of them lived, from the first word on; cut where it
    /// becomes long.
    static const std::string& ofThisThread();

private:
    TiffSilence mTiffSilence;
};

} // namespace zqx::img
