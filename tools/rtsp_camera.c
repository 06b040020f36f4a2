/*
 * rtsp_camera.c - a network camera in software: serves one MP4 file over RTSP on loopback.
 *
 *   rtsp_camera FILE h264|h265 [PORT]
 *
 * Prints "port N" once it listens (N is a free port when none is given) and serves
 * rtsp://127.0.0.1:N/camera until its standard input ends. A session ends at the file's end, as a
 * camera that restarts would end it.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <gst/rtsp-server/rtsp-server.h>

/* The parent closed its end of the pipe. */
static gboolean on_input(GIOChannel *channel, GIOCondition condition, gpointer loop)
{
    (void)channel;
    (void)condition;
    g_main_loop_quit(loop);
    return FALSE;
}

int main(int argc, char **argv)
{
    if (argc < 3) {
        fprintf(stderr, "usage: %s FILE h264|h265 [PORT]\n", argv[0]);
        return 2;
    }
    gst_init(NULL, NULL);
    GMainLoop *loop = g_main_loop_new(NULL, FALSE);

    GstRTSPServer *server = gst_rtsp_server_new();
    gst_rtsp_server_set_address(server, "127.0.0.1");
    gst_rtsp_server_set_service(server, argc > 3 ? argv[3] : "0");

    /* config-interval -1: parameter sets in front of every key frame, as cameras send them. */
    gchar *launch = g_strdup_printf("( filesrc location=\"%s\" ! qtdemux ! %sparse config-interval=-1 ! "
                                    "rtp%spay name=pay0 pt=96 )",
                                    argv[1], argv[2], argv[2]);
    GstRTSPMediaFactory *factory = gst_rtsp_media_factory_new();
    gst_rtsp_media_factory_set_launch(factory, launch);
    g_free(launch);
    GstRTSPMountPoints *mounts = gst_rtsp_server_get_mount_points(server);
    gst_rtsp_mount_points_add_factory(mounts, "/camera", factory);
    g_object_unref(mounts);

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
