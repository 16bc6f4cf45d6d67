// Decodes one picture file for zqx-img, in a process that may be lost.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <system_error>

#include <unistd.h>

#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Describe.h"
#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/isolation/DecodeRequest.h"
#include "zqx/pictures/isolation/PictureTransfer.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Codec.h"

#include "zqx/pictures/isolation/decoder/Confinement.h"

namespace {

using namespace zqx::pictures;

/// Thrown when the pixels alone would not fit, before anybody tries.
struct TooLarge {};

class Decoder {
public:
    Decoder(const DecodeRequest& request, bool confined) : mRequest(request) { mTransfer.confined = confined; }

    Transfer run() {
        const WarningListener listener([this](const std::string& line) { mTransfer.warnings.push_back(line); });
        try {
            PictureFile file(InputFile(DecodeRequest::FILE, mRequest.name), mRequest.limits);
            work(file);
        } catch (const Error& error) {
            mTransfer.outcome = needsTooMuch(2) ? Outcome::OUT_OF_MEMORY : Outcome::FAILURE;
            mTransfer.failure = error.what();
        } catch (const TooLarge&) {
            mTransfer.outcome = Outcome::OUT_OF_MEMORY;
        } catch (const std::bad_alloc&) {
            mTransfer.outcome = Outcome::OUT_OF_MEMORY;
        }
        return std::move(mTransfer);
    }

private:
    void work(PictureFile& file) {
        const HeaderListener listener = [this](const HeaderInfo& info) { note(info); };
        if (mRequest.task == DecodeRequest::Task::DECODE) {
            mTransfer.picture = decodePicture(file, mRequest.limits, listener);
            mTransfer.outcome = Outcome::PICTURE;
        } else {
            mTransfer.facts = describePicture(file, mRequest.limits, listener);
            mTransfer.outcome = Outcome::FACTS;
        }
    }

    void note(const HeaderInfo& info) {
        mTransfer.format = info.format;
        mInfo = info;
        if (!info.hasSize()) {
            TransferWriter(DecodeRequest::RESULT).announce(info.format, mTransfer.confined);
        }
        if (mRequest.task == DecodeRequest::Task::DECODE && needsTooMuch(1)) {
            throw TooLarge();
        }
    }

    /// Whether so many bitmaps of the picture are more than the memory: decoders say "damaged" to that.
    bool needsTooMuch(std::uint64_t bitmaps) const { return mInfo.decodedBytes() * bitmaps > mRequest.memory; }

    const DecodeRequest& mRequest;
    Transfer mTransfer;
    HeaderInfo mInfo;
};

void writeResult(const Transfer& transfer) {
    const TransferWriter writer(DecodeRequest::RESULT);
    try {
        writer.write(transfer);
    } catch (const std::exception&) { // no room for it
        Transfer apology;
        apology.outcome = Outcome::OUT_OF_MEMORY;
        apology.format = transfer.format;
        apology.confined = transfer.confined;
        writer.write(apology);
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    const std::optional<DecodeRequest> request =
        argc > 0 ? DecodeRequest::fromArguments(arguments.subspan(1)) : std::nullopt;
    if (!request) {
        std::fputs("zqx-img-decoder: is run by zqx-img --isolate, not by hand\n", stderr);
        return 2;
    }
    try {
        const bool confined = confine(*request);
        if (!confined && request->requireConfinement) {
            Transfer refusal;
            refusal.outcome = Outcome::UNCONFINED;
            writeResult(refusal);
            _exit(EXIT_SUCCESS);
        }
        dieOfFaults();
        installExiv2();
        writeResult(Decoder(*request, confined).run());
    } catch (const std::exception&) {
        _exit(EXIT_FAILURE);
    }
    _exit(EXIT_SUCCESS); // what decoders would do on the way out is of no interest
}
