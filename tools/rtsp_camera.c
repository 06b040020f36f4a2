/*
 * rtsp_camera.c - a network camera in software: serves one MP4 file over RTSP on loopback.
 *
 *   rtsp_camera [--udp-only] [--sub SUBFILE] [--jump SECONDS] [--sound] [--freeze N] [--drop-keys N]
 *               FILE h264|h265 [PORT]
 *
 * Prints "port N" once it listens (N is a free port when none is given) and serves
 * rtsp://127.0.0.1:N/camera, and of SUBFILE, which is of the same codec, /sub, until its standard input
 * ends. A session ends at the file's end, as a camera that restarts would end it. It prints "session ended"
 * when the other side ends one.
 *
 * --udp-only offers no packets over TCP. With --jump the camera's clock is set by so many seconds, 30
 * pictures after a session's beginning. --sound sends the file's sound, which must be G.711 A-law, beside the
 * pictures. With --freeze a session has no more than N pictures, and goes on with its sound. With --drop-keys
 * a session's first N key frames are not sent.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <gst/rtsp-server/rtsp-server.h>

#define RTP_CLOCK_HZ 90000
#define JUMP_AFTER   30 /* pictures */

static int udp_only = 0;
static int with_sound = 0;
static long jump_s = 0;
static long freeze_after = 0; /* pictures; 0 = never */
static long keys_to_drop = 0;

/* Of one session. */
struct stamps {
    guint32 last;
    int pictures;
};

/* Likewise. */
struct counts {
    GstClockTime last;
    long pictures;
    long keys;
    int drops; /* the picture at hand */
};

/* The parent closed its end of the pipe. */
static gboolean on_input(GIOChannel *channel, GIOCondition condition, gpointer loop)
{
    (void)channel;
    (void)condition;
    g_main_loop_quit(loop);
    return FALSE;
}

/* A packet's time stamp is its bytes 4 to 7, the same for all packets of a picture. */
static GstBuffer *set_clock(GstBuffer *packet, struct stamps *stamps)
{
    guint8 bytes[4];
    packet = gst_buffer_make_writable(packet);
    if (gst_buffer_extract(packet, 4, bytes, 4) != 4) return packet;
    const guint32 stamp = GST_READ_UINT32_BE(bytes);
    if (stamps->pictures == 0 || stamp != stamps->last) ++stamps->pictures;
    stamps->last = stamp;
    if (jump_s != 0 && stamps->pictures > JUMP_AFTER) {
        GST_WRITE_UINT32_BE(bytes, stamp + (guint32)(jump_s * RTP_CLOCK_HZ));
        gst_buffer_fill(packet, 4, bytes, 4);
    }
    return packet;
}

static gboolean set_clock_of_each(GstBuffer **packet, guint index, gpointer stamps)
{
    (void)index;
    *packet = set_clock(*packet, stamps);
    return TRUE;
}

static GstPadProbeReturn on_packets(GstPad *pad, GstPadProbeInfo *info, gpointer stamps)
{
    (void)pad;
    if (info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST) {
        GstBufferList *list = gst_buffer_list_make_writable(GST_PAD_PROBE_INFO_BUFFER_LIST(info));
        gst_buffer_list_foreach(list, set_clock_of_each, stamps);
        info->data = list;
    } else if (info->type & GST_PAD_PROBE_TYPE_BUFFER) {
        info->data = set_clock(GST_PAD_PROBE_INFO_BUFFER(info), stamps);
    }
    return GST_PAD_PROBE_OK;
}

/* Pictures on their way to the payloader, each in one buffer or in several of the same time. */
static GstPadProbeReturn on_picture(GstPad *pad, GstPadProbeInfo *info, gpointer counts)
{
    (void)pad;
    struct counts *session = counts;
    if (info->type &
        GST_PAD_PROBE_TYPE_EVENT_FLUSH) { /* it was only looked at; now it is played from its start */
        *session = (struct counts){0};
        return GST_PAD_PROBE_OK;
    }
    GstBuffer *buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    if (session->pictures == 0 || GST_BUFFER_PTS(buffer) != session->last) {
        const int key = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
        session->last = GST_BUFFER_PTS(buffer);
        session->keys += key;
        ++session->pictures;
        session->drops =
            (freeze_after > 0 && session->pictures > freeze_after) || (key && session->keys <= keys_to_drop);
    }
    return session->drops ? GST_PAD_PROBE_DROP : GST_PAD_PROBE_OK;
}

static void on_session(GstRTSPMediaFactory *factory, GstRTSPMedia *media, gpointer unused)
{
    (void)factory;
    (void)unused;
    GstElement *bin = gst_rtsp_media_get_element(media);
    GstElement *payloader = gst_bin_get_by_name(GST_BIN(bin), "pay0");
    GstPad *pad = gst_element_get_static_pad(payloader, "src");
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_BUFFER_LIST, on_packets,
                      g_new0(struct stamps, 1), g_free);
    gst_object_unref(pad);
    pad = gst_element_get_static_pad(payloader, "sink");
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_FLUSH, on_picture,
                      g_new0(struct counts, 1), g_free);
    gst_object_unref(pad);
    gst_object_unref(payloader);
    gst_object_unref(bin);
}

static void on_teardown(GstRTSPClient *client, GstRTSPContext *context, gpointer unused)
{
    (void)client;
    (void)context;
    (void)unused;
    printf("session ended\n");
    fflush(stdout);
}

static void on_client(GstRTSPServer *server, GstRTSPClient *client, gpointer unused)
{
    (void)server;
    (void)unused;
    g_signal_connect(client, "teardown-request", G_CALLBACK(on_teardown), NULL);
}

static void serve(GstRTSPMountPoints *mounts, const char *path, const char *file, const char *codec)
{
    /* config-interval -1: parameter sets in front of every key frame, as cameras send them. */
    gchar *launch = g_strdup_printf("( filesrc location=\"%s\" ! qtdemux %s ! %sparse config-interval=-1 ! "
                                    "rtp%spay name=pay0 pt=96 )",
                                    file,
                                    with_sound ? "name=file  file.audio_0 ! queue ! rtppcmapay name=pay1 pt=8"
                                                 "  file.video_0 ! queue"
                                               : "",
                                    codec, codec);
    GstRTSPMediaFactory *factory = gst_rtsp_media_factory_new();
    gst_rtsp_media_factory_set_launch(factory, launch);
    g_free(launch);
    if (udp_only) gst_rtsp_media_factory_set_protocols(factory, GST_RTSP_LOWER_TRANS_UDP);
    if (jump_s != 0 || freeze_after != 0 || keys_to_drop != 0)
        g_signal_connect(factory, "media-configure", G_CALLBACK(on_session), NULL);
    gst_rtsp_mount_points_add_factory(mounts, path, factory);
}

int main(int argc, char **argv)
{
    const char *sub = NULL;
    int at = 1;
    for (; at < argc && strncmp(argv[at], "--", 2) == 0; ++at) {
        if (strcmp(argv[at], "--udp-only") == 0) udp_only = 1;
        if (strcmp(argv[at], "--sound") == 0) with_sound = 1;
        if (strcmp(argv[at], "--sub") == 0 && at + 1 < argc) sub = argv[++at];
        if (strcmp(argv[at], "--jump") == 0 && at + 1 < argc) jump_s = strtol(argv[++at], NULL, 10);
        if (strcmp(argv[at], "--freeze") == 0 && at + 1 < argc) freeze_after = strtol(argv[++at], NULL, 10);
        if (strcmp(argv[at], "--drop-keys") == 0 && at + 1 < argc)
            keys_to_drop = strtol(argv[++at], NULL, 10);
    }
    if (argc - at < 2) {
        fprintf(stderr,
                "usage: %s [--udp-only] [--sub FILE] [--jump SECONDS] [--sound] [--freeze N] [--drop-keys N] "
                "FILE h264|h265 [PORT]\n",
                argv[0]);
        return 2;
    }
    gst_init(NULL, NULL);
    GMainLoop *loop = g_main_loop_new(NULL, FALSE);

    GstRTSPServer *server = gst_rtsp_server_new();
    gst_rtsp_server_set_address(server, "127.0.0.1");
    gst_rtsp_server_set_service(server, argc - at > 2 ? argv[at + 2] : "0");
    GstRTSPMountPoints *mounts = gst_rtsp_server_get_mount_points(server);
    serve(mounts, "/camera", argv[at], argv[at + 1]);
    if (sub) serve(mounts, "/sub", sub, argv[at + 1]);
    g_object_unref(mounts);

    g_signal_connect(server, "client-connected", G_CALLBACK(on_client), NULL);
    if (gst_rtsp_server_attach(server, NULL) == 0) {
        fprintf(stderr, "cannot listen\n");
        return 1;
    }
    printf("port %d\n", gst_rtsp_server_get_bound_port(server));
    fflush(stdout);

    GIOChannel *input = g_io_channel_unix_new(0);
    g_io_add_watch(input, G_IO_IN | G_IO_HUP, on_input, loop);
    g_main_loop_run(loop);
    return 0;
}
