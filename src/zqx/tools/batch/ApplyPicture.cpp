// The pipeline renders straight from the loaded bitmap into the one to be saved. No bitmap is kept longer than needed:
// the largest pictures are those that count.
#include "zqx/tools/batch/ApplyPicture.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Encode.h"
#include "zqx/tools/analysis/Render.h"
#include "zqx/tools/analysis/SplitPicture.h"

namespace zqx::tools {

using namespace pictures;

namespace {

/// Leaves of a picture what its file says beside the pixels, for the output that is made of it.
void releasePixels(Picture& picture) {
    Bitmap carrier = allocateBitmap(picture.form, 1, 1); // the resolution is kept in bitmaps
    FreeImage_SetDotsPerMeterX(carrier.get(), FreeImage_GetDotsPerMeterX(picture.bitmap.get()));
    FreeImage_SetDotsPerMeterY(carrier.get(), FreeImage_GetDotsPerMeterY(picture.bitmap.get()));
    picture.bitmap = std::move(carrier);
}

/// Adds the time since it was last asked.
class StopWatch {
public:
    void addTo(double& seconds) {
        const Clock::time_point now = Clock::now();
        seconds += std::chrono::duration<double>(now - mStart).count();
        mStart = now;
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point mStart = Clock::now();
};

/// One picture file to be written.
struct Target {
    explicit Target(const std::string& fileName) : name(fileName), format(outputFormat(fileName)) {
        OutputFile::check(name);
    }

    std::string name;
    FREE_IMAGE_FORMAT format;
    Form form = Form::RGB8;
    std::unique_ptr<OutputFile> file;
};

class Work {
public:
    Work(const ApplyFiles& files, const ApplySettings& settings) : mSettings(settings), mPipeline(settings.pipeline) {
        mTargets.emplace_back(files.output);
        if (!files.comparison.empty()) {
            mTargets.emplace_back(files.comparison);
        }
        mSource = loadPicture(files.input, settings.loading);
        mWatch.addTo(mResult.seconds.decode);
    }

    ApplyResult run() {
        mResult.width = mSource.width();
        mResult.height = mSource.height();
        connect(mPipeline, mSource);
        for (Target& target : mTargets) {
            write(target);
        }
        // Only now, so that a failure with the second picture leaves the first one as it was, too.
        std::vector<OutputFile*> files;
        std::ranges::transform(mTargets, std::back_inserter(files),
                               [](const Target& target) { return target.file.get(); });
        OutputFile::commitTogether(files);
        mWatch.addTo(mResult.seconds.store);
        mResult.depth = nameOf(mTargets.front().form);
        return mResult;
    }

private:
    void write(Target& target) {
        target.form = chooseForm(target.name, target.format, mSource.stored);
        warnOfLosses(target.name, mSource, target.form);
        prepareAlpha(mSource, target.format, target.form, changesColors(mPipeline));
        Bitmap bitmap = render(mPipeline, mSource, target.form);
        if (&target != &mTargets.front()) {
            splitWith(bitmap, target.form, mPipeline, mSource);
        }
        if (&target == &mTargets.back()) {
            releasePixels(mSource);
        }
        mWatch.addTo(mResult.seconds.adjust);
        target.file = std::make_unique<OutputFile>(target.name, mSettings.existing);
        encodePicture(*target.file, target.name, target.format, std::move(bitmap), target.form, mSource,
                      mSettings.encoding);
        mWatch.addTo(mResult.seconds.encode);
    }

    const ApplySettings& mSettings;
    img::ImageProcessingPipeline mPipeline;
    std::vector<Target> mTargets;
    Picture mSource{};
    ApplyResult mResult;
    StopWatch mWatch;
};

} // namespace

ApplyResult applyToPicture(const ApplyFiles& files, const ApplySettings& settings) {
    return Work(files, settings).run();
}

} // namespace zqx::tools
