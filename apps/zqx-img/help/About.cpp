// Collects versions from the libraries that the program is linked with.
#include "help/About.h"

#include <CLI/Version.hpp>
#include <rapidjson/rapidjson.h>

#include <zqx/img/Runtime.h>

#include "Commit.h"
#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Codec.h"

namespace zqx::app {

std::string versionText() {
    std::string text = "zqx-img " ZQX_IMG_VERSION;
    if (const std::string commit = ZQX_IMG_COMMIT; !commit.empty()) {
        text += " (commit " + commit + ")";
    }
    text += std::string("\nkernels: ") + img::instructionSet();
    text += std::string("\nlibraries: FreeImage ") + pictures::freeImageVersion() + ", Exiv2 " +
            pictures::exiv2Version() + ", RapidJSON " RAPIDJSON_VERSION_STRING + ", CLI11 " CLI11_VERSION;
#if defined(__VERSION__)
    text += "\ncompiler: " __VERSION__;
#endif
    return text;
}

} // namespace zqx::app
