// Describes the table of adjustments as text, as JSON and as a JSON Schema.
#include <zqx/tools/ParameterReference.h>

#include <algorithm>
#include <cctype>
#include <limits>

#include <rapidjson/document.h>

#include "zqx/text/Json.h"
#include "zqx/text/Width.h"
#include "zqx/tools/parameters/ParameterDocument.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::tools {

namespace {

using Kind = Parameter::Kind;
using MemberKind = DocumentMember::Kind;

constexpr std::size_t WIDEST_LINE = 100;
constexpr text::JsonLayout DOCUMENT{.indent = 4};

std::string capitalised(std::string_view words) {
    std::string text(words);
    text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text;
}

/// Copies a value from a document.
void copy(text::JsonWriter& json, const rapidjson::Value& value) {
    if (value.IsArray()) {
        json.beginArray();
        for (const rapidjson::Value& element : value.GetArray()) {
            copy(json, element);
        }
        json.endArray();
    } else if (value.IsBool()) {
        json.value(value.GetBool());
    } else if (value.IsInt64()) {
        json.value(value.GetInt64());
    } else {
        json.value(value.GetDouble());
    }
}

/// The document of a new pipeline, which contains all defaults.
class NeutralDocument {
public:
    NeutralDocument() { mDocument.Parse(img::ImageProcessingPipeline(0).saveParams().c_str()); }

    void writeDefault(text::JsonWriter& json, std::string_view path) const {
        const rapidjson::Value* value = &mDocument;
        while (!path.empty()) {
            const std::size_t end = std::min(path.find('.'), path.size());
            value = &(*value)[std::string(path.substr(0, end)).c_str()];
            path.remove_prefix(std::min(end + 1, path.size()));
        }
        json.key("default");
        copy(json, *value);
    }

private:
    rapidjson::Document mDocument;
};

const char* toString(Kind kind) {
    switch (kind) {
    case Kind::COLOR: return "color";
    case Kind::SWITCH: return "switch";
    case Kind::NUMBER: break;
    }
    return "number";
}

void explainAsJson(text::JsonWriter& json, const Parameter& parameter, const NeutralDocument& neutral) {
    json.beginObject();
    json.member("name", parameter.name);
    json.member("path", parameter.path);
    json.member("kind", toString(parameter.kind));
    if (parameter.kind == Kind::NUMBER) {
        json.key("minimum");
        json.shortNumber(parameter.minimum);
        json.key("maximum");
        json.shortNumber(parameter.maximum);
        json.member("unit", parameter.unit);
    }
    neutral.writeDefault(json, parameter.path);
    json.member("meaning", parameter.meaning);
    json.member("details", parameter.details);
    json.endObject();
}

class SchemaWriter {
public:
    std::string write() {
        mJson.beginObject();
        mJson.member("$schema", "https://json-schema.org/draft/2020-12/schema");
        mJson.member("title", "Parameter document of zqx-img");
        writeMember(documentRoot());
        mJson.endObject();
        return mJson.text();
    }

private:
    void writeMember(const DocumentMember& member) {
        switch (member.kind) {
        case MemberKind::OBJECT: writeObject(member); break;
        case MemberKind::PARAMETER: writeParameter(*member.parameter); break;
        case MemberKind::VERSION:
            mJson.member("description", member.meaning);
            mJson.member("type", "integer");
            mJson.key("const");
            mJson.value(DOCUMENT_VERSION);
            break;
        case MemberKind::SCHEMA:
            mJson.member("description", member.meaning);
            mJson.member("type", "string");
            break;
        }
    }

    void writeObject(const DocumentMember& object) {
        mJson.member("description", object.meaning);
        mJson.member("type", "object");
        mJson.key("properties");
        mJson.beginObject();
        for (const DocumentMember& member : object.members) {
            mJson.key(member.name);
            mJson.beginObject();
            writeMember(member);
            mJson.endObject();
        }
        mJson.endObject();
        writeRequired(object);
        writeDependent(object);
        mJson.key("additionalProperties");
        mJson.value(false);
    }

    /// The version, and the objects that lead to it, are required.
    void writeRequired(const DocumentMember& object) {
        for (const DocumentMember& member : object.members) {
            if (leadsToVersion(member)) {
                mJson.key("required");
                mJson.beginArray();
                mJson.value(member.name);
                mJson.endArray();
            }
        }
    }

    static bool leadsToVersion(const DocumentMember& member) {
        return member.kind == MemberKind::VERSION || std::ranges::any_of(member.members, leadsToVersion);
    }

    /// The colours of a gradient have an effect only together.
    void writeDependent(const DocumentMember& object) {
        std::vector<std::string> colors;
        for (const DocumentMember& member : object.members) {
            if (member.kind == MemberKind::PARAMETER && member.parameter->kind == Kind::COLOR) {
                colors.push_back(member.name);
            }
        }
        if (colors.empty()) {
            return;
        }
        mJson.key("dependentRequired");
        mJson.beginObject();
        for (const std::string& color : colors) {
            mJson.key(color);
            mJson.beginArray();
            for (const std::string& other : colors) {
                if (other != color) {
                    mJson.value(other);
                }
            }
            mJson.endArray();
        }
        mJson.endObject();
    }

    void writeParameter(const Parameter& parameter) {
        std::string description(parameter.details);
        if (!parameter.unit.empty()) {
            description.append(" In ").append(parameter.unit).append(".");
        }
        mJson.member("title", capitalised(parameter.meaning));
        mJson.member("description", description);
        switch (parameter.kind) {
        case Kind::NUMBER: writeNumberType(parameter.minimum, parameter.maximum); break;
        case Kind::SWITCH: mJson.member("type", "boolean"); break;
        case Kind::COLOR: writeColorType(); break;
        }
        mNeutral.writeDefault(mJson, parameter.path);
    }

    void writeNumberType(double minimum, double maximum) {
        mJson.member("type", "number");
        mJson.key("minimum");
        mJson.shortNumber(minimum);
        mJson.key("maximum");
        mJson.shortNumber(maximum);
    }

    void writeColorType() {
        mJson.member("type", "array");
        mJson.key("items");
        mJson.beginObject();
        writeNumberType(std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max());
        mJson.endObject();
        for (const char* key : {"minItems", "maxItems"}) {
            mJson.key(key);
            mJson.value(4);
        }
    }

    NeutralDocument mNeutral;
    text::JsonWriter mJson{DOCUMENT};
};

} // namespace

std::string explainParameters() {
    constexpr std::size_t INDENT = 4;
    const img::ImageProcessingPipeline neutral(0);
    const auto row = [](std::string_view name, std::string_view range, std::string_view value, std::string_view path) {
        return text::padded(name, 20) + text::padded(range, 21) + text::padded(value, 9) + std::string(path) + "\n";
    };
    std::string text = row("name for --set", "range", "default", "member of the document");
    for (const Parameter& parameter : parameters()) {
        text += '\n';
        text += row(parameter.name, describeRange(parameter), formatValue(parameter, neutral), parameter.path);
        text +=
            std::string(INDENT, ' ') +
            text::wrapped(capitalised(parameter.meaning) + ". " + std::string(parameter.details), WIDEST_LINE, INDENT) +
            "\n";
    }
    return text;
}

std::string explainParametersAsJson() {
    const NeutralDocument neutral;
    text::JsonWriter json(DOCUMENT);
    json.beginObject();
    json.key("parameters");
    json.beginArray();
    for (const Parameter& parameter : parameters()) {
        explainAsJson(json, parameter, neutral);
    }
    json.endArray();
    json.endObject();
    return json.text() + "\n";
}

std::string parameterSchema() {
    return SchemaWriter().write() + "\n";
}

} // namespace zqx::tools
