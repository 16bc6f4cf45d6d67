// Reads untrusted documents: whatever they contain, the result is an error, a remark, or a value within its range.
#include "zqx/tools/parameters/ParameterDocument.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string_view>

#include <rapidjson/document.h>

#include "zqx/pictures/files/Error.h"
#include "zqx/text/Json.h"
#include "zqx/text/Utf8.h"
#include "zqx/tools/parameters/Remarks.h"
#include "zqx/tools/parameters/Spelling.h"

namespace zqx::tools {

using namespace pictures;

namespace {

using Kind = Parameter::Kind;
using MemberKind = DocumentMember::Kind;

/// Nobody reads more, and a hostile document could cause a million.
constexpr std::size_t MOST_REMARKS = 100;
/// A document has four levels. More are allowed for members of other programs, which are ignored.
constexpr std::size_t DEEPEST_NESTING = 100;

DocumentMember& memberNamed(DocumentMember& object, std::string_view name) {
    const auto found = std::ranges::find(object.members, name, &DocumentMember::name);
    if (found != object.members.end()) {
        return *found;
    }
    return object.members.emplace_back(DocumentMember{MemberKind::OBJECT, std::string(name), "", nullptr, {}});
}

/// The member at the end of a path. It and the objects on the way are added if they are missing.
DocumentMember& memberAt(DocumentMember& root, std::string_view path) {
    const std::size_t dot = path.find('.');
    DocumentMember& member = memberNamed(root, path.substr(0, dot));
    return dot == std::string_view::npos ? member : memberAt(member, path.substr(dot + 1));
}

DocumentMember makeRoot() {
    DocumentMember root{MemberKind::OBJECT, "", "Adjustments of pictures for zqx-img.", nullptr, {}};
    root.members.push_back({MemberKind::SCHEMA, "$schema", "The schema of the document, for editors.", nullptr, {}});
    DocumentMember& version = memberAt(root, "imageProcessing.version");
    version.kind = MemberKind::VERSION;
    version.meaning = "The version of the document.";
    for (const Parameter& parameter : parameters()) {
        DocumentMember& member = memberAt(root, parameter.path);
        member.kind = MemberKind::PARAMETER;
        member.meaning = parameter.meaning;
        member.parameter = &parameter;
    }
    memberAt(root, "imageProcessing").meaning = "The adjustments. What is left out is neutral.";
    memberAt(root, "imageProcessing.colorGrading").meaning = "Light and colour.";
    memberAt(root, "imageProcessing.colorGrading.gradientMap").meaning =
        "Colours by the luma of the pixel, from black to white.";
    return root;
}

/// The position of a byte as "line 3, column 14", counted in characters from 1.
std::string lineAndColumn(const std::string& text, std::size_t offset) {
    const std::string_view before = std::string_view(text).substr(0, offset);
    const auto line = 1 + std::ranges::count(before, '\n');
    const std::string_view lastLine = before.substr(before.rfind('\n') + 1);
    return "line " + std::to_string(line) + ", column " + std::to_string(1 + text::countCharacters(lastLine));
}

const char* describe(rapidjson::ParseErrorCode code) {
    switch (code) {
    case rapidjson::kParseErrorDocumentEmpty: return "the document is empty";
    case rapidjson::kParseErrorDocumentRootNotSingular: return "there is text after the end of the document";
    case rapidjson::kParseErrorValueInvalid: return "a value is missing or misspelt";
    case rapidjson::kParseErrorObjectMissName: return "a name in double quotes is missing";
    case rapidjson::kParseErrorObjectMissColon: return "a colon is missing after a name";
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket: return "a comma or } is missing";
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket: return "a comma or ] is missing";
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex: return "\\u needs four hexadecimal digits";
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid: return "a \\u surrogate has no second half";
    case rapidjson::kParseErrorStringEscapeInvalid: return "unknown escape; a backslash is written \\\\";
    case rapidjson::kParseErrorStringMissQuotationMark: return "a closing quotation mark is missing";
    case rapidjson::kParseErrorStringInvalidEncoding:
        return "this is not UTF-8, or a control character inside a string";
    case rapidjson::kParseErrorNumberTooBig: return "a number is too large";
    case rapidjson::kParseErrorNumberMissFraction: return "digits are missing after the decimal point";
    case rapidjson::kParseErrorNumberMissExponent: return "digits are missing in the exponent";
    default: return "this is not expected here";
    }
}

[[noreturn]] void refuse(const std::string& name, const std::string& text, std::size_t offset, const char* why) {
    throw Error(name, "is not valid JSON at " + lineAndColumn(text, offset) + ": " + why);
}

/// Refuses deep nesting before it costs memory. In text that is not JSON, brackets may be misjudged.
void limitNesting(const std::string& name, const std::string& text) {
    std::size_t depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char byte = text[i];
        if (inString) {
            i += byte == '\\';
            inString = byte != '"';
        } else if (byte == '"') {
            inString = true;
        } else if (byte == '{' || byte == '[') {
            if (++depth > DEEPEST_NESTING) {
                throw Error(name, "is nested too deeply at " + lineAndColumn(text, i) + " to be a parameter document");
            }
        } else if ((byte == '}' || byte == ']') && depth > 0) {
            --depth;
        }
    }
}

rapidjson::Document parse(const std::string& name, std::string& text) {
    if (text.starts_with("\xEF\xBB\xBF")) { // the byte order mark of some editors
        text.erase(0, 3);
    }
    if (const std::size_t zero = text.find('\0'); zero != std::string::npos) {
        refuse(name, text, zero, "this is a zero byte; save the document as UTF-8 text");
    }
    limitNesting(name, text);
    rapidjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(text.c_str());
    if (document.HasParseError()) {
        refuse(name, text, document.GetErrorOffset(), describe(document.GetParseError()));
    }
    return document;
}

const rapidjson::Value* find(const rapidjson::Value& object, const char* name) {
    const auto member = object.FindMember(name);
    return member == object.MemberEnd() ? nullptr : &member->value;
}

/// Refuses anything but a document of the supported version.
void requireVersion(const std::string& name, const rapidjson::Value& document) {
    const auto require = [&](bool fulfilled, const std::string& what) {
        if (!fulfilled) {
            throw Error(name, "is not a parameter document of version " + std::to_string(DOCUMENT_VERSION) + " (" +
                                  what + "); \"zqx-img params\" prints a valid one");
        }
    };
    require(document.IsObject(), "it must be an object");
    const rapidjson::Value* processing = find(document, "imageProcessing");
    require(processing != nullptr && processing->IsObject(), "the object imageProcessing is missing");
    const rapidjson::Value* version = find(*processing, "version");
    require(version != nullptr, "imageProcessing.version is missing");
    require(version->IsInt() && version->GetInt() == DOCUMENT_VERSION,
            "imageProcessing.version must be " + std::to_string(DOCUMENT_VERSION));
}

std::string describe(const rapidjson::Value& value) {
    switch (value.GetType()) {
    case rapidjson::kNullType: return "null";
    case rapidjson::kFalseType: return "false";
    case rapidjson::kTrueType: return "true";
    case rapidjson::kObjectType: return "an object";
    case rapidjson::kArrayType: return "an array of " + std::to_string(value.Size());
    case rapidjson::kStringType: return "a string";
    case rapidjson::kNumberType: break;
    }
    return "a number";
}

std::string describeExpected(const DocumentMember& member) {
    if (member.kind != MemberKind::PARAMETER) {
        return member.kind == MemberKind::OBJECT ? "an object" : "a string";
    }
    switch (member.parameter->kind) {
    case Kind::COLOR: return "four numbers [r, g, b, a]";
    case Kind::SWITCH: return "true or false";
    case Kind::NUMBER: break;
    }
    return "a number from " + formatNumber(member.parameter->minimum) + " to " +
           formatNumber(member.parameter->maximum);
}

bool isPlain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '-' ||
           c == '$';
}

/// A name from a document in a form that is safe for terminals: unusual names are quoted and escaped to ASCII.
std::string printable(std::string_view name) {
    constexpr std::size_t LONGEST = 60;
    if (!name.empty() && name.size() <= LONGEST && std::ranges::all_of(name, isPlain)) {
        return std::string(name);
    }
    const std::string_view shown = text::prefix(name, LONGEST);
    return text::jsonString(shown, text::Charset::ASCII) + (shown.size() < name.size() ? "..." : "");
}

std::string joinPath(const std::string& path, std::string_view name) {
    return (path.empty() ? "" : path + ".") + printable(name);
}

/// Finds the known member that a misspelt or misplaced one probably means.
class NearestMember {
public:
    NearestMember(const DocumentMember& object, std::string_view name) : mObject(object), mName(name) {
        constexpr std::size_t LONGEST = 40; // nothing known comes near a longer name
        if (name.size() <= LONGEST) {
            search(documentRoot(), "");
        }
    }

    /// The name of a member of the same object, or the path of another member; empty if none is similar.
    const std::string& suggestion() const { return mSuggestion; }

private:
    void search(const DocumentMember& object, const std::string& path) {
        for (const DocumentMember& member : object.members) {
            const std::string memberPath = joinPath(path, member.name);
            const std::string& suggestion = &object == &mObject ? member.name : memberPath;
            compare(member.name, &object == &mObject, suggestion);
            if (member.kind == MemberKind::PARAMETER) {
                compare(member.parameter->name, &object == &mObject, suggestion);
            }
            search(member, memberPath);
        }
    }

    void compare(std::string_view known, bool isNeighbour, const std::string& suggestion) {
        const std::size_t distance = editDistance(mName, known);
        // Half of the letters must match. Of equally similar members, those of the same object are preferred.
        const std::size_t rank = 2 * distance + (isNeighbour ? 0 : 1);
        if (2 * distance <= std::max(mName.size(), known.size()) && rank < mRank) {
            mRank = rank;
            mSuggestion = suggestion;
        }
    }

    const DocumentMember& mObject;
    std::string_view mName;
    std::size_t mRank = std::numeric_limits<std::size_t>::max();
    std::string mSuggestion;
};

std::string namesIn(const DocumentMember& object) {
    std::string names;
    for (const DocumentMember& member : object.members) {
        names += (names.empty() ? "" : ", ") + member.name;
    }
    return names;
}

} // namespace

/// Traverses a document in parallel with the table of known members, and collects the valid parameters.
class DocumentReader {
public:
    DocumentReader(const std::string& name, Remarks& remarks, MergedDocument& merged)
        : mName(name), mRemarks(remarks), mMerged(merged) {}

    void read(const rapidjson::Value& document) {
        readObject(document, documentRoot(), "");
        if (mRemarkCount > MOST_REMARKS) {
            mRemarks.add(mName, "has " + std::to_string(mRemarkCount - MOST_REMARKS) + " more problems like these", "");
        }
    }

private:
    void readObject(const rapidjson::Value& object, const DocumentMember& known, const std::string& path) {
        std::set<std::string_view> names; // not hashed: a hostile document could use names with colliding hashes
        for (auto member = object.MemberBegin(); member != object.MemberEnd(); ++member) {
            const std::string_view name(member->name.GetString(), member->name.GetStringLength());
            const auto found = std::ranges::find(known.members, name, &DocumentMember::name);
            if (!names.insert(name).second) {
                remark([&] { return joinPath(path, name) + " is given more than once"; },
                       "; only the first one counts");
            } else if (found == known.members.end()) {
                remark([&] { return describeUnknown(known, path, name); }, ". It is ignored");
            } else {
                readMember(member->value, *found, joinPath(path, name));
            }
        }
    }

    void readMember(const rapidjson::Value& value, const DocumentMember& known, const std::string& path) {
        switch (known.kind) {
        case MemberKind::OBJECT:
            if (value.IsObject()) {
                return readObject(value, known, path);
            }
            break;
        case MemberKind::PARAMETER:
            if (readParameter(value, *known.parameter, path)) {
                return;
            }
            break;
        case MemberKind::SCHEMA:
            if (value.IsString()) {
                return;
            }
            break;
        case MemberKind::VERSION: return; // checked before
        }
        remark([&] { return path + " is " + describe(value) + " but must be " + describeExpected(known); },
               ". It is ignored");
    }

    /// Reads a parameter; false if its type is wrong.
    bool readParameter(const rapidjson::Value& value, const Parameter& parameter, const std::string& path) {
        switch (parameter.kind) {
        case Kind::NUMBER: return readNumber(value, parameter, path);
        case Kind::COLOR: return readColor(value, parameter, path);
        case Kind::SWITCH: break;
        }
        if (value.IsBool()) {
            mMerged.given(parameter) = {{value.GetBool() ? 1.0F : 0.0F}, mName};
        }
        return value.IsBool();
    }

    bool readNumber(const rapidjson::Value& value, const Parameter& parameter, const std::string& path) {
        if (!value.IsNumber()) {
            return false;
        }
        const double number = value.GetDouble();
        const double limited = std::clamp<double>(number, parameter.minimum, parameter.maximum);
        if (number != limited) {
            remark(
                [&] {
                    return path + " is " + formatNumber(number) + ", outside the range " +
                           formatNumber(parameter.minimum) + " to " + formatNumber(parameter.maximum);
                },
                "; limited to " + formatNumber(limited));
        }
        mMerged.given(parameter) = {{static_cast<float>(limited)}, mName};
        return true;
    }

    bool readColor(const rapidjson::Value& value, const Parameter& parameter, const std::string& path) {
        MergedDocument::Given color{{}, mName};
        if (!value.IsArray() || value.Size() != color.numbers.size()) {
            return false;
        }
        for (rapidjson::SizeType i = 0; i < value.Size(); ++i) {
            if (!value[i].IsNumber()) {
                return false;
            }
            const double number = value[i].GetDouble();
            if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
                throw Error(mName, path + " contains a number that is too large for a colour");
            }
            color.numbers[i] = static_cast<float>(number);
        }
        mMerged.given(parameter) = color;
        return true;
    }

    static std::string describeUnknown(const DocumentMember& object, const std::string& path, std::string_view name) {
        const NearestMember nearest(object, name);
        return joinPath(path, name) + " is unknown" +
               (nearest.suggestion().empty() ? " (known members: " + namesIn(object) + ")"
                                             : "; did you mean \"" + nearest.suggestion() + "\"?");
    }

    template <typename Describe>
    void remark(const Describe& problem, const std::string& consequence) {
        if (++mRemarkCount <= MOST_REMARKS) {
            const std::string text = problem();
            // A question already ends the sentence.
            mRemarks.add(mName, text, text.ends_with('?') ? consequence.substr(1) : consequence);
        }
    }

    const std::string& mName;
    Remarks& mRemarks;
    MergedDocument& mMerged;
    std::size_t mRemarkCount = 0;
};

/// Writes the given parameters, and nothing else, as a document.
class DocumentWriter {
public:
    explicit DocumentWriter(const MergedDocument& merged) : mMerged(merged) {}

    std::string write() {
        writeObject(documentRoot());
        return mJson.text();
    }

private:
    void writeObject(const DocumentMember& object) {
        mJson.beginObject();
        for (const DocumentMember& member : object.members) {
            if (member.kind == MemberKind::OBJECT) {
                mJson.key(member.name);
                writeObject(member);
            } else if (member.kind == MemberKind::VERSION) {
                mJson.key(member.name);
                mJson.value(DOCUMENT_VERSION);
            } else if (member.kind == MemberKind::PARAMETER && mMerged.given(*member.parameter)) {
                mJson.key(member.name);
                writeValue(member.parameter->kind, mMerged.given(*member.parameter)->numbers);
            }
        }
        mJson.endObject();
    }

    void writeValue(Kind kind, const std::array<float, 4>& numbers) {
        switch (kind) {
        case Kind::NUMBER: mJson.value(static_cast<double>(numbers[0])); break;
        case Kind::SWITCH: mJson.value(numbers[0] != 0.0F); break;
        case Kind::COLOR:
            mJson.beginArray();
            for (const float number : numbers) {
                mJson.value(static_cast<double>(number));
            }
            mJson.endArray();
            break;
        }
    }

    const MergedDocument& mMerged;
    text::JsonWriter mJson;
};

const DocumentMember& documentRoot() {
    static const DocumentMember ROOT = makeRoot();
    return ROOT;
}

MergedDocument::MergedDocument() : mGiven(parameters().size()) {
}

void MergedDocument::add(const std::string& name, std::string text, Remarks& remarks) {
    const rapidjson::Document document = parse(name, text);
    requireVersion(name, document);
    DocumentReader(name, remarks, *this).read(document);
}

void MergedDocument::checkGradient(Remarks& remarks) const {
    const auto isMissingColor = [this](const Parameter& parameter) {
        return parameter.kind == Kind::COLOR && !given(parameter);
    };
    const auto missing = std::ranges::find_if(parameters(), isMissingColor);
    if (missing == parameters().end()) {
        return;
    }
    for (const Parameter& parameter : parameters()) {
        if (parameter.kind == Kind::COLOR && given(parameter)) {
            remarks.add(given(parameter)->document,
                        std::string(parameter.path) + " has no effect without " + std::string(missing->path),
                        ". It is ignored");
        }
    }
}

std::string MergedDocument::text() const {
    return DocumentWriter(*this).write();
}

const std::optional<MergedDocument::Given>& MergedDocument::given(const Parameter& parameter) const {
    return mGiven[static_cast<std::size_t>(&parameter - parameters().data())];
}

std::optional<MergedDocument::Given>& MergedDocument::given(const Parameter& parameter) {
    return mGiven[static_cast<std::size_t>(&parameter - parameters().data())];
}

} // namespace zqx::tools
