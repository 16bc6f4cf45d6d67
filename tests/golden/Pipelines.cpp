// Parameter documents: what is saved after they were loaded, and the pictures that they make.
#include <memory>

#include <zqx/img/ImageProcessingPipeline.h>

#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

using zqx::img::ImageProcessingPipeline;

struct Document {
    const char* name;
    const char* text;
};

constexpr Document DOCUMENTS[] = {
    {"neutral", R"({"imageProcessing": {"version": 1}})"},
    {"everything", R"({"imageProcessing": {"version": 1, "inversionEnabled": true,
        "colorGrading": {"exposure": 0.7, "contrast": 0.6, "highlight": -0.25, "shadow": 0.3, "temperature": 5000,
            "hue": 12.5, "saturation": 1.2, "gradientMap": {"intensity": 0.2,
                "black": [0.1, 0.05, 0.2, 1], "white": [1, 0.9, 0.8, 1]}},
        "sharpness": 0.4, "flipX": true, "flipY": true}})"},
    {"soft", R"({"imageProcessing": {"version": 1, "colorGrading": {"saturation": 0}, "sharpness": -0.3}})"},
    {"sharp-flipped", R"({"imageProcessing": {"version": 1, "sharpness": 1, "flipY": true}})"},
    {"limited", R"({"imageProcessing": {"version": 1, "colorGrading": {"exposure": 1e3, "contrast": -1,
        "highlight": 99, "shadow": -99, "temperature": 1, "hue": -1000, "saturation": 3,
        "gradientMap": {"intensity": 7, "black": [0.5, 0.25, 0.125, 0]}}, "sharpness": -4, "flipX": 1}})"},
    {"other-version", R"({"imageProcessing": {"version": 2, "sharpness": 1}})"},
    {"broken", R"({"imageProcessing": {"version": 1, "sharpness": })"},
};

constexpr Image::Format SOURCES[] = {Image::SRGB8, Image::SBGRA8, Image::RGB32F, Image::GRAY8};
constexpr Image::Format OUTPUTS[] = {Image::SRGB8, Image::RGBA8, Image::RGBA32F, Image::SGRAY8};

constexpr Layout SIZES[] = {{1, 1}, {7, 5}, {67, 33}};

std::vector<std::uint8_t> getBytes(const std::string& text) {
    return {text.begin(), text.end()};
}

void recordDocument(Record& record, const Document& document) {
    ImageProcessingPipeline pipeline(ImageProcessingPipeline::ALL_STAGES);
    pipeline.setSharpness(0.125F); // stays where a document is refused
    const bool isAccepted = pipeline.loadParams(document.text);
    record.keep(std::string(document.name) + "/saved", [&](auto add) {
        add({static_cast<std::uint8_t>(isAccepted ? 1 : 0)});
        add(getBytes(pipeline.saveParams()));
    });
    for (const Image::Format from : SOURCES) {
        for (const Image::Format to : OUTPUTS) {
            record.keep(std::string(document.name) + "/" + test::getName(from) + "-" + test::getName(to),
                        [&](auto add) {
                            for (const Layout& size : SIZES) {
                                Picture source({size.width, size.height, 3}, from, Content::SHADED, size.width);
                                Picture output({size.width, size.height}, to);
                                pipeline.setInputImage(std::make_shared<Image>(source.image()));
                                pipeline.execute(output.image());
                                add(output.bytes(NanBits::CANONICAL));
                            }
                        });
        }
    }
}

void recordStages(Record& record) {
    constexpr int MASKS[] = {0, 1, 2, 4, 8, 16, 17, 24, 31};
    for (const int mask : MASKS) {
        record.keep("stages=" + std::to_string(mask), [&](auto add) {
            ImageProcessingPipeline pipeline(mask);
            pipeline.loadParams(DOCUMENTS[1].text);
            for (const Image::Format to : OUTPUTS) {
                Picture source({67, 33}, Image::SRGB8, Content::SHADED, 2);
                Picture output({67, 33}, to);
                pipeline.setInputImage(std::make_shared<Image>(source.image()));
                pipeline.execute(output.image());
                add(output.bytes(NanBits::CANONICAL));
            }
        });
    }
}

} // namespace

void recordPipelines(Record& record) {
    for (const Document& document : DOCUMENTS) {
        recordDocument(record, document);
    }
    recordStages(record);
}

} // namespace golden
