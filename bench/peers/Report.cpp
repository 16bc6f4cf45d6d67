// See Report.h.
#include "peers/Report.h"

#include <cstdio>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace bench {

namespace {

std::string fixed(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string milliseconds(const Timing& timing) {
    return fixed(timing.elapsed * 1e3, timing.elapsed < 0.01 ? 3 : 1);
}

std::string requirement(const Row& row) {
    std::string text = row.requiredRatio > 0.0 ? fixed(row.requiredRatio, row.requiredRatio < 1.0 ? 2 : 1) : "-";
    if (row.copyLimit > 0.0) {
        text += ", copy at most " + fixed(row.copyLimit, 1);
    }
    if (row.missesRatio() || row.missesCopyLimit()) {
        text += " **MISSED**";
    }
    return text;
}

void appendCell(std::string& line, const std::string& cell) {
    line += " " + cell + " |";
}

std::string line(const Row& row) {
    std::string text = "|";
    appendCell(text, row.name);
    appendCell(text, row.peerName);
    appendCell(text, fixed(row.ratio, 2) + " x");
    appendCell(text, requirement(row));
    appendCell(text, fixed(row.timesCopy, 2));
    appendCell(text, fixed(row.cpuRatio, 2) + " x");
    appendCell(text, milliseconds(row.measurement.ours));
    appendCell(text, milliseconds(row.measurement.peer));
    appendCell(text, milliseconds(row.measurement.copy));
    for (std::size_t i = 0; i < row.forcedRatios.size(); ++i) {
        appendCell(text, fixed(row.forcedRatios[i], 2) + " x, " + milliseconds(row.measurement.forced[i]));
    }
    return text + "\n";
}

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void writeNumber(Writer& writer, const char* key, double value) {
    writer.Key(key);
    writer.Double(value);
}

void writeString(Writer& writer, const char* key, const std::string& value) {
    writer.Key(key);
    writer.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
}

void writeTiming(Writer& writer, const std::string& who, const Timing& timing) {
    writeNumber(writer, (who + "Ms").c_str(), timing.elapsed * 1e3);
    writeNumber(writer, (who + "CpuMs").c_str(), timing.cpu * 1e3);
}

void writeForced(Writer& writer, const Row& row, const std::vector<std::string>& simdTargets) {
    writer.Key("forced");
    writer.StartArray();
    for (std::size_t i = 0; i < simdTargets.size(); ++i) {
        writer.StartObject();
        writeString(writer, "simdTarget", simdTargets[i]);
        writeNumber(writer, "ratio", row.forcedRatios[i]);
        writeTiming(writer, "ours", row.measurement.forced[i]);
        writer.EndObject();
    }
    writer.EndArray();
}

void writeRow(Writer& writer, const Row& row, const std::vector<std::string>& simdTargets) {
    writer.StartObject();
    writeString(writer, "work", row.name);
    writeString(writer, "peer", row.peerName);
    writeNumber(writer, "ratio", row.ratio);
    writeNumber(writer, "requiredRatio", row.requiredRatio);
    writeNumber(writer, "timesCopy", row.timesCopy);
    writeNumber(writer, "copyLimit", row.copyLimit);
    writer.Key("reached");
    writer.Bool(!row.missesRatio() && !row.missesCopyLimit());
    writeNumber(writer, "cpuRatio", row.cpuRatio);
    writeTiming(writer, "ours", row.measurement.ours);
    writeTiming(writer, "peer", row.measurement.peer);
    writeTiming(writer, "copy", row.measurement.copy);
    writeForced(writer, row, simdTargets);
    writer.EndObject();
}

} // namespace

Row pickRow(const WorkEntry& entry, const Work& work, const Measurement& measurement) {
    const double pixelShare = static_cast<double>(work.pixels) / static_cast<double>(work.peerPixels);
    const Timing& ours = measurement.ours;
    const Timing& peer = measurement.peer;
    Row row{.name = entry.name,
            .peerName = entry.peerName,
            .requiredRatio = entry.requiredRatio,
            .copyLimit = entry.copyLimit,
            .ratio = peer.elapsed * pixelShare / ours.elapsed,
            .cpuRatio = peer.cpu * pixelShare / ours.cpu,
            .timesCopy = ours.elapsed / measurement.copy.elapsed,
            .forcedRatios = {},
            .measurement = measurement};
    for (const Timing& forced : measurement.forced) {
        row.forcedRatios.push_back(peer.elapsed * pixelShare / forced.elapsed);
    }
    return row;
}

std::string asMarkdown(const std::vector<Row>& rows, const std::vector<std::string>& simdTargets) {
    std::string table =
        "| work | against | ratio | at least | times the copy | ratio of CPU time | ours, ms | peer, ms | copy, ms |";
    std::string rule = "|---|---|---|---|---|---|---|---|---|";
    for (const std::string& target : simdTargets) {
        appendCell(table, target + ": ratio, ms");
        rule += "---|";
    }
    table += "\n" + rule + "\n";
    for (const Row& row : rows) {
        table += line(row);
    }
    return table;
}

std::string asJson(const std::vector<Row>& rows, const std::vector<std::string>& simdTargets,
                   const Conditions& conditions, int repetitions) {
    rapidjson::StringBuffer text;
    Writer writer(text);
    writer.StartObject();
    writeNumber(writer, "width", static_cast<double>(conditions.width));
    writeNumber(writer, "height", static_cast<double>(conditions.height));
    writeNumber(writer, "threads", conditions.threads);
    writeNumber(writer, "repetitions", repetitions);
    writer.Key("rows");
    writer.StartArray();
    for (const Row& row : rows) {
        writeRow(writer, row, simdTargets);
    }
    writer.EndArray();
    writer.EndObject();
    return text.GetString();
}

} // namespace bench
