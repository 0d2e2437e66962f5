#include "cli/report_writer.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "cli/content_text.h"
#include "cli/picture.h"

namespace qel::cli {
namespace {

using Line = nlohmann::ordered_json;  // fields stay in the order in which they are added

Line textOrNull(const char* text) { return text ? Line(utf8FromBytes(text)) : Line(nullptr); }

Line texts(std::span<const char* const> list) {
    Line array = Line::array();
    for (const char* const text : list) array.push_back(textOrNull(text));
    return array;
}

void addContentInfo(Line& line, const ContentInfo& info) {
    line["kind"] = static_cast<std::uint32_t>(info.kind);
    line["version"] = info.version;
    line["width"] = info.width;
    line["height"] = info.height;
    line["oldFormat"] = info.oldFormat;
    line["paletteCount"] = info.paletteCount;
    line["extra"] = info.extra;
    line["option1"] = info.option1;
    line["option2"] = info.option2;
    line["palette"] = Line::array();
    if (info.kind != ContentKind::paletteMovie) return;
    const std::size_t entries = std::min<std::size_t>(info.paletteCount, info.palette.size());
    for (std::size_t at = 0; at < entries; ++at) line["palette"].push_back(info.palette[at]);
}

// The checksum of the frame's rows without their padding.
std::string frameChecksum(const FrameRecord& frame) {
    const std::vector<std::uint8_t> bytes = littleEndianBytes(copyFrame(frame));
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08lx", crc32_z(crc32_z(0, nullptr, 0), bytes.data(), bytes.size()));
    return digits;
}

void addFrame(Line& line, const FrameRecord& frame, std::uint64_t number) {
    line["frame"] = number;
    line["x"] = frame.x;
    line["y"] = frame.y;
    line["width"] = frame.width;
    line["height"] = frame.height;
    line["pitch"] = frame.pitch;
    line["crc32"] = frameChecksum(frame);
}

constexpr int number(SoundChannel channel) { return static_cast<int>(channel); }

// Adds the name and fields of one kind of call each; those without an overload of their own are not reported.
struct AddCall {
    Line& line;
    bool reported = true;

    Line& named(const char* name) { return line["service"] = name, line; }

    void operator()(const calls::Read& call) {
        named("read");
        line["offset"] = call.offset;
        line["count"] = call.count;
        line["result"] = call.result ? 1 : 0;
    }
    void operator()(const calls::ArmTimer& call) {
        named("armTimer");
        line["interval"] = call.interval;
        line["milliseconds"] = call.milliseconds;
    }
    void operator()(const calls::CancelTimer&) { named("cancelTimer"); }
    void operator()(const calls::CreateTemporary& call) {
        named("createTemp");
        line["length"] = call.length;
        line["result"] = call.result ? 1 : 0;
    }
    void operator()(const calls::WriteTemporary& call) { named("writeTemp")["count"] = call.count; }
    void operator()(const calls::SwitchToTemporary&) { named("switchToTemp"); }
    void operator()(const calls::Vibrate& call) { named("vibrate")["milliseconds"] = call.milliseconds; }
    void operator()(const calls::StartSound& call) {
        named("soundStart");
        line["channel"] = number(call.request.channel);
        line["id"] = call.request.id;
        line["format"] = call.request.format;
        line["length"] = call.request.data.size();
        line["loops"] = call.request.loops;
        line["volume"] = call.request.volume;
    }
    void operator()(const calls::StopSound& call) {
        named("soundStop");
        line["channel"] = number(call.channel);
        line["id"] = call.id;
    }
    void operator()(const calls::PauseSound& call) { named("soundPause")["channel"] = number(call.channel); }
    void operator()(const calls::ResumeSound& call) { named("soundResume")["channel"] = number(call.channel); }
    void operator()(const calls::SetSoundVolume& call) {
        named("soundVolume");
        line["channel"] = number(call.channel);
        line["volume"] = call.volume;
    }
    void operator()(const calls::LoadRegistry& call) { named("registryLoad")["name"] = textOrNull(call.name); }
    void operator()(const calls::SaveRegistry& call) {
        named("registrySave");
        line["name"] = textOrNull(call.name);
        line["keys"] = texts(call.keys);
        line["values"] = texts(call.values);
        line["flag"] = call.flag ? 1 : 0;
    }
    void operator()(const calls::DeleteRegistry& call) { named("registryDelete")["name"] = textOrNull(call.name); }
    void operator()(const calls::Log& call) { named("log")["text"] = utf8FromWide(call.text); }
    template <class Other>
    void operator()(const Other&) {
        reported = false;
    }
};

}  // namespace

void ReportWriter::eventRaised(const EventNotice& notice) {
    Line line = {{"time", clock_.elapsedMs()},
                 {"event", static_cast<std::uint32_t>(notice.event)},
                 {"argument", notice.argument}};
    switch (notice.event) {
        case HostEvent::contentOpened: addContentInfo(line, *reinterpret_cast<const ContentInfo*>(notice.value)); break;
        case HostEvent::configure: break;
        case HostEvent::presentFrame:
            addFrame(line, *reinterpret_cast<const FrameRecord*>(notice.value), ++frames_);
            break;
        case HostEvent::finished: {
            const bool hasText = notice.argument != static_cast<std::uint32_t>(FinishReason::end);
            line["text"] = textOrNull(hasText ? reinterpret_cast<const char*>(notice.value) : nullptr);
            break;
        }
        case HostEvent::streamInformation:
        case HostEvent::newPass:
        case HostEvent::progress:
        case HostEvent::streamStatus:
        case HostEvent::aborted: line["value"] = static_cast<std::uint32_t>(notice.value); break;
    }
    out_ << line.dump() << '\n';
}

void ReportWriter::serviceCalled(const ServiceCall& call) {
    if (!withServices_) return;
    Line line = {{"time", clock_.elapsedMs()}};
    AddCall add{line};
    std::visit(add, call);
    if (add.reported) out_ << line.dump() << '\n';
}

void ReportWriter::end(std::string_view how) {
    out_ << Line{{"time", clock_.elapsedMs()}, {"end", how}}.dump() << '\n' << std::flush;
}

}  // namespace qel::cli
