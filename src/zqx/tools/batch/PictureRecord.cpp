// Formats records as text and as JSON.
#include <zqx/tools/PictureRecord.h>

#include "zqx/text/Json.h"
#include "zqx/text/Numbers.h"

namespace zqx::tools {

namespace {

constexpr text::JsonLayout ONE_LINE{.decimals = 6};

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

void writeResult(text::JsonWriter& json, const ApplyResult& result) {
    json.member("width", result.width);
    json.member("height", result.height);
    json.member("depth", result.depth);
    json.key("seconds");
    json.beginObject();
    json.member("decode", result.seconds.decode);
    json.member("adjust", result.seconds.adjust);
    json.member("encode", result.seconds.encode);
    json.member("store", result.seconds.store);
    json.endObject();
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
    text::JsonWriter json(ONE_LINE);
    json.beginObject();
    json.member("input", record.input);
    if (!record.output.empty()) {
        json.member("output", record.output);
    }
    json.member("status", toString(record.status));
    if (!record.reason.empty()) {
        json.member("reason", record.reason);
    }
    if (record.status == Status::WRITTEN) {
        writeResult(json, record.result);
    }
    json.key("warnings");
    json.beginArray();
    for (const std::string& warning : record.warnings) {
        json.value(warning);
    }
    json.endArray();
    json.endObject();
    return json.text();
}

std::string toJson(const RunTotals& totals, double seconds, bool interrupted) {
    text::JsonWriter json(ONE_LINE);
    json.beginObject();
    json.key("summary");
    json.beginObject();
    json.member("written", totals.written);
    json.member("failed", totals.failed);
    json.member("skipped", totals.skipped);
    json.member("planned", totals.planned);
    json.key("unreadable");
    json.beginObject();
    for (const auto& [extension, count] : totals.unreadable) {
        json.member("." + extension, count);
    }
    json.endObject();
    json.member("seconds", seconds);
    json.member("interrupted", interrupted);
    json.endObject();
    json.endObject();
    return json.text();
}

std::string describe(const ApplyResult& result) {
    const double megapixels = 1e-6 * static_cast<double>(result.width) * static_cast<double>(result.height);
    const StageTimes& seconds = result.seconds;
    const auto stage = [](const char* name, double duration) {
        return ", " + std::string(name) + " " + text::fixed(duration, 3);
    };
    return std::to_string(result.width) + " x " + std::to_string(result.height) + ", " + result.depth +
           stage("decode", seconds.decode) + stage("adjust", seconds.adjust) + stage("encode", seconds.encode) +
           stage("store", seconds.store) + " s, " +
           text::fixed(megapixels / (seconds.total() > 0.0 ? seconds.total() : 1.0), 1) + " megapixels/s";
}

std::string describe(const RunTotals& totals, double seconds) {
    const std::size_t worked = totals.written + totals.failed;
    const std::string line = std::to_string(totals.written) + " written, " + std::to_string(totals.failed) +
                             " failed, " + std::to_string(totals.skipped) + " skipped in " + text::fixed(seconds, 1) +
                             " s";
    return worked == 0 || seconds <= 0.0
               ? line
               : line + " (" + text::fixed(static_cast<double>(worked) / seconds, 1) + " pictures/s)";
}

} // namespace zqx::tools
