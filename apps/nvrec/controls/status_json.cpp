/* status_json.cpp - see status.h: for programs. No other source of the recorder uses the JSON library. */
#include <nlohmann/json.hpp>

#include "controls/status.h"
#include "controls/status_names.h"

namespace nvrec
{
namespace
{

using Json = nlohmann::ordered_json;

Json json_of(const RecordingStatus &recording)
{
    return {{"stream", recording.stream},
            {"state", recording_state_name(recording.state)},
            {"by_event", recording.by_event},
            {"beside_the_pool", recording.beside_the_pool},
            {"file", recording.file},
            {"lag_s", recording.lag_s},
            {"written", recording.written},
            {"lost", recording.lost},
            {"refused", recording.refused},
            {"skipped", recording.skipped},
            {"pool_laps", recording.pool_laps},
            {"bytes", recording.bytes},
            {"last_error", recording.last_error}};
}

Json decoder_of(const CameraLine &line)
{
    if (!line.decoder) return nullptr;
    Json decoder = {{"decoded", line.decoder->decoded},
                    {"shown", line.decoder->shown},
                    {"dropped", line.decoder->dropped},
                    {"damaged", line.decoder->damaged},
                    {"resets", line.decoder->resets}};
    if (line.backlog) {
        decoder["discarded"] = line.decoder->discarded(*line.backlog);
        decoder["backlog_frames"] = line.backlog->frames;
        decoder["backlog_bytes"] = line.backlog->bytes;
    }
    return decoder;
}

Json json_of(const CameraLine &line)
{
    const CameraStatus &camera = line.status;
    const Json main_state = camera.main_state ? Json(camera_state_name(*camera.main_state)) : Json(nullptr);
    Json json = {{"channel", line.channel},
                 {"name", line.name},
                 {"address", line.address},
                 {"state", camera_state_name(camera.state)},
                 {"since_us", camera.since_wall_us},
                 {"stream", camera.sub_stream ? "sub" : "main"},
                 {"main_state", main_state},
                 {"width", camera.facts.width_px},
                 {"height", camera.facts.height_px},
                 {"frame_rate", camera.frame_rate},
                 {"bit_rate_bps", camera.bit_rate_bps},
                 {"key_distance_s", camera.key_distance_s},
                 {"jitter_ms", camera.jitter_ms},
                 {"loss", camera.loss},
                 {"link_quality", camera.link_quality},
                 {"waits_for_key", camera.waits_for_key},
                 {"reconnects", camera.reconnects},
                 {"clock_jumps", camera.clock_jumps},
                 {"sent", line.sent},
                 {"refused", camera.refused},
                 {"last_error", camera.last_error},
                 {"decoder", decoder_of(line)},
                 {"recordings", Json::array()}};
    for (const RecordingStatus &recording : line.recordings)
        json["recordings"].push_back(json_of(recording));
    return json;
}

Json json_of(const ArchiveStatus &archive)
{
    return {{"total_bytes", archive.total_bytes},
            {"oldest_us", archive.oldest_us},
            {"free_bytes", archive.free_bytes < 0 ? Json(nullptr) : Json(archive.free_bytes)},
            {"deleted_files", archive.deleted},
            {"limit_bytes", archive.limit_bytes},
            {"limit_age_s", archive.limit_age_s},
            {"trouble", archive.trouble}};
}

} // namespace

std::string status_json(const RecorderStatus &status)
{
    Json json = {{"nvrec", status.version},
                 {"libnvrhal", status.library},
                 {"at_us", status.at_us},
                 {"up_s", status.up_s},
                 {"cameras", Json::array()}};
    for (const CameraLine &camera : status.cameras)
        json["cameras"].push_back(json_of(camera));
    if (status.disk)
        json["disk"] = {{"state", disk_state_name(status.disk->state)},
                        {"since_s", status.disk->since_s},
                        {"queued_bytes", status.disk->queued_bytes},
                        {"queue_limit_bytes", status.disk->queue_limit_bytes},
                        {"trouble", status.disk->trouble}};
    if (status.archive) json["archive"] = json_of(*status.archive);
    if (status.disk_left_s) json["disk_left_hours"] = *status.disk_left_s / 3600;
    json["board"] = Json::array();
    for (const BoardRow &row : status.board)
        json["board"].push_back({{"device", row.device}, {"item", row.item}, {"state", row.state}});
    /* Names may be in another encoding than UTF-8. */
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace nvrec
