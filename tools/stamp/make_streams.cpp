/*
 * make_streams.cpp - encodes a stamped elementary stream: H.264 or H.265 as a byte stream with
 * parameter sets at every key frame, or one JPEG picture after the other. The background moves, so
 * that frames between key frames carry real motion; the same options give the same pictures.
 *
 * A text file beside the stream, <out>.frames, holds the length of every frame in bytes, one a line.
 */
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>
#include <memory>
#include <string>
#include <vector>

#include "stamp.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/opt.h>
}

namespace
{

struct Options {
    std::string codec = "h264";
    std::string out;
    std::string preset = "veryfast";
    std::string params; // for the encoder itself, as it spells them
    int width = 640;
    int height = 360;
    int fps = 25;
    int frames = 50;
    int gop = 10;
    int b_frames = 0;
    int slices = 1;
    int quality = 23;
    int noise = 6;
    int channel = 0;
    int first_frame = 0;
    bool full_range = false;
};

struct AvDelete {
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
};
using ContextPtr = std::unique_ptr<AVCodecContext, AvDelete>;
using PacketPtr = std::unique_ptr<AVPacket, AvDelete>;
using FramePtr = std::unique_ptr<AVFrame, AvDelete>;

struct CloseFile {
    void operator()(FILE *file) const { fclose(file); }
};
using FilePtr = std::unique_ptr<FILE, CloseFile>;

const char *encoder_name(const std::string &codec)
{
    if (codec == "h265") return "libx265";
    return codec == "jpeg" ? "mjpeg" : "libx264";
}

ContextPtr open_encoder(const Options &options)
{
    const AVCodec *codec = avcodec_find_encoder_by_name(encoder_name(options.codec));
    ContextPtr context(codec != nullptr ? avcodec_alloc_context3(codec) : nullptr);
    if (context == nullptr) return nullptr;
    context->width = options.width;
    context->height = options.height;
    context->time_base = {1, options.fps};
    context->framerate = {options.fps, 1};
    context->pix_fmt =
        options.codec == "jpeg" || options.full_range ? AV_PIX_FMT_YUVJ420P : AV_PIX_FMT_YUV420P;
    if (options.full_range) context->color_range = AVCOL_RANGE_JPEG;
    context->gop_size = options.gop;
    context->max_b_frames = options.b_frames;
    context->thread_count = 1; // the same bytes on every machine
    if (options.codec == "jpeg") {
        context->flags |= AV_CODEC_FLAG_QSCALE;
        context->global_quality = FF_QP2LAMBDA * 3;
    } else {
        av_opt_set(context->priv_data, "preset", options.preset.c_str(), 0);
        av_opt_set_double(context->priv_data, "crf", options.quality, 0);
    }
    const std::string slices = std::to_string(options.slices);
    const std::string b_frames = std::to_string(options.b_frames);
    const std::string more = options.params.empty() ? "" : ":" + options.params;
    if (options.codec == "h264")
        av_opt_set(context->priv_data, "x264-params",
                   ("scenecut=0:repeat-headers=1:annexb=1:slices=" + slices + more).c_str(), 0);
    if (options.codec == "h265")
        av_opt_set(
            context->priv_data, "x265-params",
            ("log-level=none:pools=none:frame-threads=1:scenecut=0:open-gop=0:repeat-headers=1:slices=" +
             slices + ":bframes=" + b_frames + more)
                .c_str(),
            0);
    return avcodec_open2(context.get(), codec, nullptr) >= 0 ? std::move(context) : nullptr;
}

// A picture that moves and has texture: two ramps that slide, and noise from a fixed generator.
void paint(AVFrame &frame, const Options &options, int number)
{
    uint32_t noise = 0x9e3779b9u * static_cast<uint32_t>(number + 1) + static_cast<uint32_t>(options.channel);
    for (int y = 0; y < frame.height; ++y) {
        uint8_t *row = frame.data[0] + static_cast<ptrdiff_t>(y) * frame.linesize[0];
        for (int x = 0; x < frame.width; ++x) {
            noise = noise * 1664525u + 1013904223u;
            const int ramp = (x + 3 * number) / 4 + (y + number) / 3 + (((x + number) ^ y) >> 4 & 15);
            const int grain = options.noise > 0
                                  ? static_cast<int>((noise >> 24) % static_cast<unsigned>(options.noise))
                                  : 0;
            row[x] = static_cast<uint8_t>(40 + ramp % 150 + grain);
        }
    }
    for (int chroma = 1; chroma < 3; ++chroma)
        for (int y = 0; y < (frame.height + 1) / 2; ++y) {
            uint8_t *row = frame.data[chroma] + static_cast<ptrdiff_t>(y) * frame.linesize[chroma];
            for (int x = 0; x < (frame.width + 1) / 2; ++x)
                row[x] = static_cast<uint8_t>(96 + ((chroma == 1 ? x : y) + number + 8 * options.channel) /
                                                       8 % 64);
        }
    stamp::draw(
        frame.data[0], frame.linesize[0], frame.width, frame.height,
        {static_cast<unsigned>(options.channel), static_cast<unsigned>(options.first_frame + number)});
}

bool write_packets(AVCodecContext &context, AVPacket &packet, FILE *stream, FILE *lengths)
{
    while (avcodec_receive_packet(&context, &packet) >= 0) {
        const size_t size = static_cast<size_t>(packet.size);
        const bool written = fwrite(packet.data, 1, size, stream) == size;
        fprintf(lengths, "%zu\n", size);
        av_packet_unref(&packet);
        if (!written) return false;
    }
    return true;
}

bool encode(const Options &options)
{
    const ContextPtr context = open_encoder(options);
    const FramePtr frame(av_frame_alloc());
    const PacketPtr packet(av_packet_alloc());
    const FilePtr stream(fopen(options.out.c_str(), "wb"));
    const FilePtr lengths(fopen((options.out + ".frames").c_str(), "w"));
    if (!context || !frame || !packet || !stream || !lengths) return false;
    frame->format = context->pix_fmt;
    frame->width = options.width;
    frame->height = options.height;
    frame->color_range = context->color_range;
    if (av_frame_get_buffer(frame.get(), 0) < 0) return false;
    for (int number = 0; number < options.frames; ++number) {
        if (av_frame_make_writable(frame.get()) < 0) return false;
        paint(*frame, options, number);
        frame->pts = number;
        frame->quality = context->global_quality;
        if (avcodec_send_frame(context.get(), frame.get()) < 0) return false;
        if (!write_packets(*context, *packet, stream.get(), lengths.get())) return false;
    }
    avcodec_send_frame(context.get(), nullptr);
    return write_packets(*context, *packet, stream.get(), lengths.get());
}

bool is_codec(const char *name)
{
    return strcmp(name, "h264") == 0 || strcmp(name, "h265") == 0 || strcmp(name, "jpeg") == 0;
}

// A whole decimal number from `least` on.
bool read_number(const char *text, int least, int &value)
{
    char *end = nullptr;
    errno = 0;
    const long read = strtol(text, &end, 10);
    if (end == text || *end != '\0' || errno != 0 || read < least || read > INT_MAX) return false;
    value = static_cast<int>(read);
    return true;
}

bool read_size(const char *text, Options &options)
{
    constexpr int kSmallest_px = 32;
    char behind = '\0';
    return sscanf(text, "%dx%d%c", &options.width, &options.height, &behind) == 2 &&
           options.width >= kSmallest_px && options.height >= kSmallest_px;
}

// Options that are a number, and the least that each may be.
struct NumberOption {
    const char *name;
    int Options::*value;
    int least;
};
constexpr NumberOption kNumbers[] = {
    {"fps", &Options::fps, 1},
    {"frames", &Options::frames, 1},
    {"gop", &Options::gop, 1},
    {"b-frames", &Options::b_frames, 0},
    {"slices", &Options::slices, 1},
    {"crf", &Options::quality, 0},
    {"noise", &Options::noise, 0},
    {"channel", &Options::channel, 0},
    {"first-frame", &Options::first_frame, 0},
};

bool read_option(const std::string &name, const char *text, Options &options)
{
    for (const NumberOption &number : kNumbers)
        if (name == number.name) return read_number(text, number.least, options.*number.value);
    if (name == "size") return read_size(text, options);
    if (name == "codec") {
        options.codec = text;
        return is_codec(text);
    }
    (name == "preset" ? options.preset : name == "params" ? options.params : options.out) = text;
    return true;
}

constexpr char kUsage[] = R"(usage: make_streams --out FILE [options]
  --codec h264|h265|jpeg   (h264)
  --size WIDTHxHEIGHT      pixels, 32 or more each (640x360)
  --fps N                  frames per second (25)
  --frames N               how many frames (50)
  --gop N                  frames from one key frame to the next (10)
  --b-frames N             B-frames between others (0)
  --slices N               slices a frame (1)
  --crf N                  constant rate factor (23)
  --noise N                luma noise, steps (6)
  --preset NAME            encoder preset (veryfast)
  --params NAME=VALUE:...  more options of x264 or x265
  --channel N              stamped channel, 0 to 63 (0)
  --first-frame N          stamped number of the first frame (0)
  --full-range             full-range luma
)";

bool read_command_line(int argc, char **argv, Options &options)
{
    std::vector<option> known;
    for (const NumberOption &number : kNumbers)
        known.push_back({number.name, required_argument, nullptr, 0});
    for (const char *name : {"codec", "size", "preset", "params", "out"})
        known.push_back({name, required_argument, nullptr, 0});
    known.push_back({"full-range", no_argument, nullptr, 'f'});
    known.push_back({});
    int place = 0;
    for (int found; (found = getopt_long(argc, argv, "", known.data(), &place)) != -1;) {
        const char *name = known[static_cast<size_t>(place)].name;
        if (found == 'f') {
            options.full_range = true;
        } else if (found != 0) {
            return false; // getopt_long has said why
        } else if (!read_option(name, optarg, options)) {
            fprintf(stderr, "make_streams: bad %s \"%s\"\n", name, optarg);
            return false;
        }
    }
    if (optind < argc) fprintf(stderr, "make_streams: bad argument \"%s\"\n", argv[optind]);
    if (options.out.empty()) fprintf(stderr, "make_streams: --out is missing\n");
    return optind == argc && !options.out.empty();
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!read_command_line(argc, argv, options)) {
        fputs(kUsage, stderr);
        return 2;
    }
    if (!encode(options)) {
        fprintf(stderr, "make_streams: cannot encode \"%s\"\n", options.out.c_str());
        return 1;
    }
    return 0;
}
