// The table of adjustments as text, as JSON and as a JSON Schema.
#include <zqx/tools/ParameterReference.h>

#include <algorithm>
#include <cctype>
#include <limits>
#include <sstream>

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "zqx/tools/parameters/ParameterDocument.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::tools {

namespace {

using Kind = Parameter::Kind;
using MemberKind = DocumentMember::Kind;
using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

constexpr std::size_t WIDEST_LINE = 100;

std::string padded(std::string_view text, std::size_t width) {
    std::string cell(text);
    cell.resize(std::max(width, cell.size()), ' ');
    return cell;
}

std::string capitalised(std::string_view words) {
    std::string text(words);
    text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text;
}

std::string wrapped(const std::string& text, std::size_t indent) {
    std::string lines;
    std::size_t used = WIDEST_LINE; // the first word begins a line, too
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (used + 1 + word.size() > WIDEST_LINE) {
            lines += lines.empty() ? "" : "\n";
            lines += std::string(indent, ' ');
            used = indent;
        } else {
            lines += ' ';
            ++used;
        }
        lines += word;
        used += word.size();
    }
    return lines + "\n";
}

void writeText(Writer& writer, const char* key, std::string_view text) {
    writer.Key(key);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

/// The shortest spelling: 0.5, and 5 rather than 5.0.
void writeNumber(Writer& writer, const char* key, double number) {
    const std::string digits = formatNumber(number);
    writer.Key(key);
    writer.RawValue(digits.data(), digits.size(), rapidjson::kNumberType);
}

/// The document of a new pipeline, which has every default in its place.
class NeutralDocument {
public:
    NeutralDocument() { mDocument.Parse(img::ImageProcessingPipeline(0).saveParams().c_str()); }

    void writeDefault(Writer& writer, std::string_view path) const {
        const rapidjson::Value* value = &mDocument;
        while (!path.empty()) {
            const std::size_t end = std::min(path.find('.'), path.size());
            value = &(*value)[std::string(path.substr(0, end)).c_str()];
            path.remove_prefix(std::min(end + 1, path.size()));
        }
        writer.Key("default");
        value->Accept(writer);
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

void explainAsJson(Writer& writer, const Parameter& parameter, const NeutralDocument& neutral) {
    writer.StartObject();
    writeText(writer, "name", parameter.name);
    writeText(writer, "path", parameter.path);
    writeText(writer, "kind", toString(parameter.kind));
    if (parameter.kind == Kind::NUMBER) {
        writeNumber(writer, "minimum", parameter.minimum);
        writeNumber(writer, "maximum", parameter.maximum);
        writeText(writer, "unit", parameter.unit);
    }
    neutral.writeDefault(writer, parameter.path);
    writeText(writer, "meaning", parameter.meaning);
    writeText(writer, "details", parameter.details);
    writer.EndObject();
}

class SchemaWriter {
public:
    std::string write() {
        mWriter.StartObject();
        writeText(mWriter, "$schema", "https://json-schema.org/draft/2020-12/schema");
        writeText(mWriter, "title", "Parameter document of zqx-img");
        writeMember(documentRoot());
        mWriter.EndObject();
        return mText.GetString();
    }

private:
    void writeMember(const DocumentMember& member) {
        switch (member.kind) {
        case MemberKind::OBJECT: writeObject(member); break;
        case MemberKind::PARAMETER: writeParameter(*member.parameter); break;
        case MemberKind::VERSION:
            writeText(mWriter, "description", member.meaning);
            writeText(mWriter, "type", "integer");
            mWriter.Key("const");
            mWriter.Int(DOCUMENT_VERSION);
            break;
        case MemberKind::SCHEMA:
            writeText(mWriter, "description", member.meaning);
            writeText(mWriter, "type", "string");
            break;
        }
    }

    void writeObject(const DocumentMember& object) {
        writeText(mWriter, "description", object.meaning);
        writeText(mWriter, "type", "object");
        mWriter.Key("properties");
        mWriter.StartObject();
        for (const DocumentMember& member : object.members) {
            mWriter.Key(member.name.c_str());
            mWriter.StartObject();
            writeMember(member);
            mWriter.EndObject();
        }
        mWriter.EndObject();
        writeRequired(object);
        writeDependent(object);
        mWriter.Key("additionalProperties");
        mWriter.Bool(false);
    }

    /// The version, and the objects on the way to it.
    void writeRequired(const DocumentMember& object) {
        for (const DocumentMember& member : object.members) {
            if (leadsToVersion(member)) {
                mWriter.Key("required");
                mWriter.StartArray();
                mWriter.String(member.name.c_str());
                mWriter.EndArray();
            }
        }
    }

    static bool leadsToVersion(const DocumentMember& member) {
        return member.kind == MemberKind::VERSION || std::ranges::any_of(member.members, leadsToVersion);
    }

    /// Colours of one gradient count only together.
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
        mWriter.Key("dependentRequired");
        mWriter.StartObject();
        for (const std::string& color : colors) {
            mWriter.Key(color.c_str());
            mWriter.StartArray();
            for (const std::string& other : colors) {
                if (other != color) {
                    mWriter.String(other.c_str());
                }
            }
            mWriter.EndArray();
        }
        mWriter.EndObject();
    }

    void writeParameter(const Parameter& parameter) {
        std::string description(parameter.details);
        if (!parameter.unit.empty()) {
            description.append(" In ").append(parameter.unit).append(".");
        }
        writeText(mWriter, "title", capitalised(parameter.meaning));
        writeText(mWriter, "description", description);
        switch (parameter.kind) {
        case Kind::NUMBER: writeNumberType(parameter.minimum, parameter.maximum); break;
        case Kind::SWITCH: writeText(mWriter, "type", "boolean"); break;
        case Kind::COLOR: writeColorType(); break;
        }
        mNeutral.writeDefault(mWriter, parameter.path);
    }

    void writeNumberType(double minimum, double maximum) {
        writeText(mWriter, "type", "number");
        writeNumber(mWriter, "minimum", minimum);
        writeNumber(mWriter, "maximum", maximum);
    }

    void writeColorType() {
        writeText(mWriter, "type", "array");
        mWriter.Key("items");
        mWriter.StartObject();
        writeNumberType(std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max());
        mWriter.EndObject();
        for (const char* key : {"minItems", "maxItems"}) {
            mWriter.Key(key);
            mWriter.Int(4);
        }
    }

    NeutralDocument mNeutral;
    rapidjson::StringBuffer mText;
    Writer mWriter{mText};
};

} // namespace

std::string explainParameters() {
    constexpr std::size_t INDENT = 4;
    const img::ImageProcessingPipeline neutral(0);
    const auto row = [](std::string_view name, std::string_view range, std::string_view value, std::string_view path) {
        return padded(name, 20) + padded(range, 21) + padded(value, 9) + std::string(path) + "\n";
    };
    std::string text = row("name for --set", "range", "default", "member of the document");
    for (const Parameter& parameter : parameters()) {
        text += '\n';
        text += row(parameter.name, describeRange(parameter), formatValue(parameter, neutral), parameter.path);
        text += wrapped(capitalised(parameter.meaning) + ". " + std::string(parameter.details), INDENT);
    }
    return text;
}

std::string explainParametersAsJson() {
    const NeutralDocument neutral;
    rapidjson::StringBuffer text;
    Writer writer(text);
    writer.StartObject();
    writer.Key("parameters");
    writer.StartArray();
    for (const Parameter& parameter : parameters()) {
        explainAsJson(writer, parameter, neutral);
    }
    writer.EndArray();
    writer.EndObject();
    return text.GetString() + std::string("\n");
}

std::string parameterSchema() {
    return SchemaWriter().write() + "\n";
}

} // namespace zqx::tools
