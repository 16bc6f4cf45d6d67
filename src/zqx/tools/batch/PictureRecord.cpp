// Records in words and in JSON.
#include <zqx/tools/PictureRecord.h>

#include <cstdint>
#include <cstdio>

#include <rapidjson/encodings.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace zqx::tools {

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;
using Status = PictureRecord::Status;

const char* toString(Status status) {
    switch (status) {
    case Status::WRITTEN: return "written";
    case Status::SKIPPED: return "skipped";
    case Status::FAILED: return "failed";
    case Status::PLANNED: break;
    }
    return "planned";
}

/// File names may be any bytes; JSON is text.
std::string toValidUtf8(const std::string& text) {
    rapidjson::MemoryStream in(text.data(), text.size());
    rapidjson::StringBuffer out;
    while (in.Tell() < text.size()) {
        const std::size_t start = in.Tell();
        std::uint32_t code = 0;
        if (rapidjson::UTF8<>::Decode(in, &code) && in.Tell() <= text.size()) {
            rapidjson::UTF8<>::Encode(out, code);
        } else {
            rapidjson::UTF8<>::Encode(out, 0xFFFD);
            in.src_ = in.begin_ + start + 1; // what follows may begin a character
        }
    }
    return {out.GetString(), out.GetSize()};
}

void write(Writer& writer, const char* key, const std::string& text) {
    const std::string valid = toValidUtf8(text);
    writer.Key(key);
    writer.String(valid.data(), static_cast<rapidjson::SizeType>(valid.size()));
}

void write(Writer& writer, const char* key, double number) {
    writer.Key(key);
    writer.Double(number);
}

void write(Writer& writer, const char* key, std::size_t number) {
    writer.Key(key);
    writer.Uint64(number);
}

void writeResult(Writer& writer, const ApplyResult& result) {
    write(writer, "width", std::size_t{result.width});
    write(writer, "height", std::size_t{result.height});
    write(writer, "depth", result.depth);
    writer.Key("seconds");
    writer.StartObject();
    write(writer, "decode", result.seconds.decode);
    write(writer, "adjust", result.seconds.adjust);
    write(writer, "encode", result.seconds.encode);
    write(writer, "store", result.seconds.store);
    writer.EndObject();
}

} // namespace

void RunTotals::count(Status status) {
    switch (status) {
    case Status::WRITTEN: ++written; break;
    case Status::SKIPPED: ++skipped; break;
    case Status::FAILED: ++failed; break;
    case Status::PLANNED: ++planned; break;
    }
}

std::string toJson(const PictureRecord& record) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.SetMaxDecimalPlaces(6);
    writer.StartObject();
    write(writer, "input", record.input);
    if (!record.output.empty()) {
        write(writer, "output", record.output);
    }
    write(writer, "status", std::string(toString(record.status)));
    if (!record.reason.empty()) {
        write(writer, "reason", record.reason);
    }
    if (record.status == Status::WRITTEN) {
        writeResult(writer, record.result);
    }
    writer.Key("warnings");
    writer.StartArray();
    for (const std::string& warning : record.warnings) {
        const std::string valid = toValidUtf8(warning);
        writer.String(valid.data(), static_cast<rapidjson::SizeType>(valid.size()));
    }
    writer.EndArray();
    writer.EndObject();
    return buffer.GetString();
}

std::string toJson(const RunTotals& totals, double seconds, bool interrupted) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.SetMaxDecimalPlaces(6);
    writer.StartObject();
    writer.Key("summary");
    writer.StartObject();
    write(writer, "written", totals.written);
    write(writer, "failed", totals.failed);
    write(writer, "skipped", totals.skipped);
    write(writer, "planned", totals.planned);
    writer.Key("unreadable");
    writer.StartObject();
    for (const auto& [extension, count] : totals.unreadable) {
        write(writer, std::string(1, '.').append(toValidUtf8(extension)).c_str(), count);
    }
    writer.EndObject();
    write(writer, "seconds", seconds);
    writer.Key("interrupted");
    writer.Bool(interrupted);
    writer.EndObject();
    writer.EndObject();
    return buffer.GetString();
}

std::string describe(const ApplyResult& result) {
    const double megapixels = 1e-6 * static_cast<double>(result.width) * static_cast<double>(result.height);
    char text[256];
    std::snprintf(text, sizeof text,
                  "%u x %u, %s, decode %.3f, adjust %.3f, encode %.3f, store %.3f s, %.1f megapixels/s", result.width,
                  result.height, result.depth.c_str(), result.seconds.decode, result.seconds.adjust,
                  result.seconds.encode, result.seconds.store,
                  megapixels / (result.seconds.total() > 0.0 ? result.seconds.total() : 1.0));
    return text;
}

std::string describe(const RunTotals& totals, double seconds) {
    const std::size_t worked = totals.written + totals.failed;
    char text[160];
    std::snprintf(text, sizeof text, "%zu written, %zu failed, %zu skipped in %.1f s", totals.written, totals.failed,
                  totals.skipped, seconds);
    std::string line(text);
    if (worked > 0 && seconds > 0.0) {
        std::snprintf(text, sizeof text, " (%.1f pictures/s)", static_cast<double>(worked) / seconds);
        line += text;
    }
    return line;
}

} // namespace zqx::tools
