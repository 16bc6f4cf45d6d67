// Decodes a picture, renders it directly into the pixels to be encoded, and writes the outputs. Memory is released as
// early as possible, which matters for very large pictures.
#include <zqx/tools/Batch.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/tools/analysis/Render.h"
#include "zqx/tools/analysis/SplitPicture.h"
#include "zqx/tools/batch/OpenPicture.h"

namespace zqx::tools {

using namespace pictures;

namespace {

/// Measures the time between successive calls.
class StopWatch {
public:
    void addTo(double& seconds) {
        const Clock::time_point now = Clock::now();
        seconds += std::chrono::duration<double>(now - mStart).count();
        mStart = now;
    }

    void restart() { mStart = Clock::now(); }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point mStart = Clock::now();
};

/// An output file.
struct Target {
    explicit Target(const std::string& fileName) : name(fileName), format(outputFormat(fileName)) {
        OutputFile::check(name);
    }

    std::string name;
    FileFormat format;
    SampleLayout layout = SampleLayout::RGB8;
    std::unique_ptr<OutputFile> file;
};

class Work {
public:
    Work(const ApplyFiles& files, const ApplySettings& settings, const Admission& admit)
        : mSettings(settings), mPipeline(settings.pipeline) {
        mTargets.emplace_back(files.output);
        if (!files.comparison.empty()) {
            mTargets.emplace_back(files.comparison);
        }
        PictureFile input(files.input, settings.loading.limits);
        for (const Target& target : mTargets) {
            checkReplacement(input, target.name);
        }
        admit(input);
        mWatch.restart();
        mSource = readPicture(input, settings.loading);
        mWatch.addTo(mResult.seconds.decode);
    }

    ApplyResult run() {
        mResult.width = mSource.width();
        mResult.height = mSource.height();
        connect(mPipeline, mSource);
        for (Target& target : mTargets) {
            write(target);
        }
        // Only now, so that a failure with the second output leaves the first file unchanged as well.
        std::vector<OutputFile*> files;
        std::ranges::transform(mTargets, std::back_inserter(files),
                               [](const Target& target) { return target.file.get(); });
        OutputFile::commitTogether(files);
        mWatch.addTo(mResult.seconds.store);
        mResult.depth = getName(mTargets.front().layout);
        return mResult;
    }

private:
    void write(Target& target) {
        target.layout = chooseLayout(target.name, target.format, mSource.stored);
        warnOfLosses(target.name, mSource, target.layout);
        prepareAlpha(mSource, target.format, target.layout, changesColors(mPipeline));
        PixelBuffer pixels = render(mPipeline, mSource, target.layout);
        if (&target != &mTargets.front()) {
            splitWith(pixels, mPipeline, mSource);
        }
        if (&target == &mTargets.back()) {
            mSource.pixels.reset();
        }
        mWatch.addTo(mResult.seconds.adjust);
        target.file = std::make_unique<OutputFile>(target.name, mSettings.keepExisting ? OutputFile::Existing::KEEP
                                                                                       : OutputFile::Existing::REPLACE);
        encodePicture(*target.file, target.name, target.format, std::move(pixels), target.layout, mSource,
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
    return applyToPicture(files, settings, [](const PictureFile&) {});
}

ApplyResult applyToPicture(const ApplyFiles& files, const ApplySettings& settings, const Admission& admit) {
    return Work(files, settings, admit).run();
}

} // namespace zqx::tools
