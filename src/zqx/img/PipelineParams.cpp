// The parameter document of the pipeline: one JSON object, version 1. Which members it has, and where, is said by the
// table of parameters; the gradient's two colours are linear r, g, b, a here.
#include <zqx/img/ImageProcessingPipeline.h>

#include <algorithm>
#include <vector>

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <qutil/Color.h>
#include <qutil/Json.h>
#include <zqx/img/Parameters.h>

namespace zqx::img {

namespace {

constexpr std::string_view VERSION_MEMBER = "version";
constexpr int DOCUMENT_VERSION = 1;

/// In the order of the document, which is the order of the stages.
constexpr const Parameter* MEMBERS[] = {
    &parameter::INVERSION,
    &parameter::EXPOSURE,
    &parameter::CONTRAST,
    &parameter::HIGHLIGHT,
    &parameter::SHADOW,
    &parameter::TEMPERATURE,
    &parameter::HUE,
    &parameter::SATURATION,
    &parameter::GRADIENT_INTENSITY,
    &parameter::GRADIENT_BLACK,
    &parameter::GRADIENT_WHITE,
    &parameter::SHARPNESS,
    &parameter::FLIP_X,
    &parameter::FLIP_Y,
};
static_assert(std::size(MEMBERS) == PARAMETERS.size());

using Path = std::vector<std::string_view>;

Path splitPath(std::string_view text) {
    Path path;
    for (std::size_t dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.')) {
        path.push_back(text.substr(0, dot));
        text.remove_prefix(dot + 1);
    }
    path.push_back(text);
    return path;
}

/// The object that holds all members, by the first part of their paths.
std::string_view documentName() {
    return splitPath(MEMBERS[0]->path).front();
}

/// The gradient's colour that a member is about.
const Color& gradientColor(const ColorGradient& gradient, const Parameter& member) {
    return gradient.getColorAt(member.name == parameter::GRADIENT_BLACK.name ? 0 : 255);
}

/// Writes members one after the other, and the objects that they lie in around them.
class DocumentWriter {
public:
    explicit DocumentWriter(const ImageProcessingPipeline& pipeline) : mPipeline(pipeline) {}

    std::string write() {
        mJson.StartObject();
        for (const Parameter* member : MEMBERS) {
            Path objects = splitPath(member->path);
            objects.pop_back();
            enter(objects);
            writeKey(member->member());
            writeValue(*member);
        }
        enter({});
        mJson.EndObject();
        return mText.GetString();
    }

private:
    void writeKey(std::string_view key) { mJson.Key(key.data(), static_cast<rapidjson::SizeType>(key.size())); }

    void writeNumber(float value) {
        mJson.Double(static_cast<double>(value)); // widening keeps the exact value in the text
    }

    /// Ends objects and begins others until these are the open ones.
    void enter(const Path& objects) {
        const auto common = static_cast<std::size_t>(
            std::mismatch(mOpen.begin(), mOpen.end(), objects.begin(), objects.end()).first - mOpen.begin());
        for (; mOpen.size() > common; mOpen.pop_back()) {
            mJson.EndObject();
        }
        while (mOpen.size() < objects.size()) {
            mOpen.push_back(objects[mOpen.size()]);
            writeKey(mOpen.back());
            mJson.StartObject();
            if (mOpen.size() == 1) {
                writeKey(VERSION_MEMBER);
                mJson.Int(DOCUMENT_VERSION);
            }
        }
    }

    void writeValue(const Parameter& member) {
        switch (member.kind) {
        case Parameter::Kind::NUMBER: writeNumber(member.get(mPipeline)[0]); break;
        case Parameter::Kind::SWITCH: mJson.Bool(member.get(mPipeline)[0] != 0.0F); break;
        case Parameter::Kind::COLOR: writeColor(member); break;
        }
    }

    void writeColor(const Parameter& member) {
        const Color& color = gradientColor(mPipeline.getColorGrading().getGradientMap(), member);
        mJson.StartArray();
        for (const float component : {color.r, color.g, color.b, color.a}) {
            writeNumber(component);
        }
        mJson.EndArray();
    }

    const ImageProcessingPipeline& mPipeline;
    rapidjson::StringBuffer mText;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> mJson{mText};
    Path mOpen;
};

/// The member at a path, or a null value that no reader accepts.
const rapidjson::Value& memberAt(const rapidjson::Value& root, const Path& path) {
    static const rapidjson::Value MISSING;
    const rapidjson::Value* value = &root;
    for (const std::string_view name : path) {
        if (!value->IsObject()) {
            return MISSING;
        }
        const auto found = value->FindMember(
            rapidjson::Value(rapidjson::StringRef(name.data(), static_cast<rapidjson::SizeType>(name.size()))));
        if (found == value->MemberEnd()) {
            return MISSING;
        }
        value = &found->value;
    }
    return *value;
}

const rapidjson::Value& findValue(const rapidjson::Value& root, const Parameter& member) {
    return memberAt(root, splitPath(member.path));
}

bool readColor(const rapidjson::Value& root, const Parameter& member, Color& color) {
    qutil::EColor4f read{};
    if (!qutil::jsonReadValue(findValue(root, member), read)) {
        return false;
    }
    color = {read.r, read.g, read.b, read.a};
    return true;
}

/// The gradient's colours count only together.
void readGradient(const rapidjson::Value& root, ImageProcessingPipeline& pipeline) {
    Color black;
    Color white;
    if (readColor(root, parameter::GRADIENT_BLACK, black) && readColor(root, parameter::GRADIENT_WHITE, white)) {
        ColorGrading grading = pipeline.getColorGrading();
        grading.setGradientMap(ColorGradient(black, white));
        pipeline.setColorGrading(grading);
    }
}

/// Sets what is there and of the wanted type.
void readMember(const rapidjson::Value& root, const Parameter& member, ImageProcessingPipeline& pipeline) {
    const rapidjson::Value& value = findValue(root, member);
    double number = 0.0;
    bool isOn = false;
    switch (member.kind) {
    case Parameter::Kind::NUMBER:
        if (qutil::jsonReadValue(value, number)) {
            member.set(pipeline, {static_cast<float>(number)});
        }
        break;
    case Parameter::Kind::SWITCH:
        if (qutil::jsonReadValue(value, isOn)) {
            member.set(pipeline, {isOn ? 1.0F : 0.0F});
        }
        break;
    case Parameter::Kind::COLOR:
        if (member.name == parameter::GRADIENT_WHITE.name) { // the second one
            readGradient(root, pipeline);
        }
        break;
    }
}

bool isOurVersion(const rapidjson::Value& root) {
    int version = 0;
    return root.IsObject() && memberAt(root, {documentName()}).IsObject() &&
           qutil::jsonReadValue(memberAt(root, {documentName(), VERSION_MEMBER}), version) &&
           version == DOCUMENT_VERSION;
}

} // namespace

std::string ImageProcessingPipeline::saveParams() const {
    return DocumentWriter(*this).write();
}

bool ImageProcessingPipeline::loadParams(const std::string& text) {
    rapidjson::Document document;
    // Iterative: the depth of a hostile document must not become the depth of our stack.
    document.Parse<rapidjson::kParseIterativeFlag>(text.c_str());
    if (document.HasParseError() || !isOurVersion(document)) {
        return false;
    }
    resetParams();
    for (const Parameter* member : MEMBERS) {
        readMember(document, *member, *this);
    }
    return true;
}

} // namespace zqx::img
