// The parameter document of the pipeline: one JSON object, version 1.
// Its values are the internal ones of ColorGrading; the gradient's two colours are linear r, g, b, a.
#include <zqx/img/ImageProcessingPipeline.h>

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <qutil/Color.h>
#include <qutil/Json.h>

namespace zqx::img {

namespace {

constexpr int DOCUMENT_VERSION = 1;

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void writeNumber(Writer& writer, const char* key, float value) {
    writer.Key(key);
    writer.Double(static_cast<double>(value)); // widening keeps the exact value in the text
}

void writeBool(Writer& writer, const char* key, bool value) {
    writer.Key(key);
    writer.Bool(value);
}

void writeColor(Writer& writer, const char* key, const Color& color) {
    writer.Key(key);
    writer.StartArray();
    for (const float component : {color.r, color.g, color.b, color.a}) {
        writer.Double(static_cast<double>(component));
    }
    writer.EndArray();
}

struct GradingMember {
    const char* key;
    float (ColorGrading::*get)() const;
    void (ColorGrading::*set)(float);
};

/// In the order of the document.
constexpr GradingMember GRADING_MEMBERS[] = {
    {"exposure", &ColorGrading::getExposure, &ColorGrading::setExposure},
    {"contrast", &ColorGrading::getContrast, &ColorGrading::setContrast},
    {"highlight", &ColorGrading::getHighlight, &ColorGrading::setHighlight},
    {"shadow", &ColorGrading::getShadow, &ColorGrading::setShadow},
    {"temperature", &ColorGrading::getTemperature, &ColorGrading::setTemperature},
    {"hue", &ColorGrading::getHue, &ColorGrading::setHue},
    {"saturation", &ColorGrading::getSaturation, &ColorGrading::setSaturation},
};

void writeColorGrading(Writer& writer, const ColorGrading& grading) {
    writer.StartObject();
    for (const GradingMember& member : GRADING_MEMBERS) {
        writeNumber(writer, member.key, (grading.*member.get)());
    }
    writer.Key("gradientMap");
    writer.StartObject();
    writeNumber(writer, "intensity", grading.getGradientMapIntensity());
    writeColor(writer, "black", grading.getGradientMap().getColorAt(0));
    writeColor(writer, "white", grading.getGradientMap().getColorAt(255));
    writer.EndObject();
    writer.EndObject();
}

/// The member of an object, or a null value that no reader accepts.
const rapidjson::Value& memberOf(const rapidjson::Value& object, const char* key) {
    static const rapidjson::Value MISSING;
    const auto member = object.FindMember(key);
    return member == object.MemberEnd() ? MISSING : member->value;
}

/// Reads a member of type `Read` and, where it has that type, hands it to the function.
template <typename Read, typename Function>
void ifReads(const rapidjson::Value& object, const char* key, const Function& function) {
    Read value{};
    if (qutil::jsonReadValue(memberOf(object, key), value)) {
        function(value);
    }
}

Color toColor(const qutil::EColor4f& color) {
    return {color.r, color.g, color.b, color.a};
}

void readGradientMap(const rapidjson::Value& object, ColorGrading& grading) {
    ifReads<double>(object, "intensity",
                    [&](double weight) { grading.setGradientMapIntensity(static_cast<float>(weight)); });
    ifReads<qutil::EColor4f>(object, "black", [&](const qutil::EColor4f& black) {
        ifReads<qutil::EColor4f>(object, "white", [&](const qutil::EColor4f& white) {
            grading.setGradientMap(ColorGradient(toColor(black), toColor(white)));
        });
    });
}

void readColorGrading(const rapidjson::Value& object, ColorGrading& grading) {
    for (const GradingMember& member : GRADING_MEMBERS) {
        ifReads<double>(object, member.key, [&](double value) { (grading.*member.set)(static_cast<float>(value)); });
    }
    const rapidjson::Value& gradientMap = memberOf(object, "gradientMap");
    if (gradientMap.IsObject()) {
        readGradientMap(gradientMap, grading);
    }
}

} // namespace

std::string ImageProcessingPipeline::saveParams() const {
    rapidjson::StringBuffer text;
    Writer writer(text);
    writer.StartObject();
    writer.Key("imageProcessing");
    writer.StartObject();
    writer.Key("version");
    writer.Int(DOCUMENT_VERSION);
    writeBool(writer, "inversionEnabled", mInversionEnabled);
    writer.Key("colorGrading");
    writeColorGrading(writer, mColorGrading);
    writeNumber(writer, "sharpness", mSharpness);
    writeBool(writer, "flipX", mFlipX);
    writeBool(writer, "flipY", mFlipY);
    writer.EndObject();
    writer.EndObject();
    return text.GetString();
}

bool ImageProcessingPipeline::loadParams(const std::string& text) {
    rapidjson::Document document;
    // Iterative: the depth of a hostile document must not become the depth of our stack.
    document.Parse<rapidjson::kParseIterativeFlag>(text.c_str());
    if (document.HasParseError() || !document.IsObject()) {
        return false;
    }
    const rapidjson::Value& root = memberOf(document, "imageProcessing");
    if (!root.IsObject()) {
        return false;
    }
    int version = 0;
    if (!qutil::jsonReadValue(memberOf(root, "version"), version) || version != DOCUMENT_VERSION) {
        return false;
    }

    resetParams();
    ifReads<bool>(root, "inversionEnabled", [this](bool enabled) { setInversionEnabled(enabled ? 1 : 0); });
    const rapidjson::Value& colorGrading = memberOf(root, "colorGrading");
    if (colorGrading.IsObject()) {
        readColorGrading(colorGrading, mColorGrading);
    }
    ifReads<double>(root, "sharpness", [this](double strength) { setSharpness(static_cast<float>(strength)); });
    ifReads<bool>(root, "flipX", [this](bool flip) { setFlipHorizontal(flip ? 1 : 0); });
    ifReads<bool>(root, "flipY", [this](bool flip) { setFlipVertical(flip ? 1 : 0); });
    return true;
}

} // namespace zqx::img
