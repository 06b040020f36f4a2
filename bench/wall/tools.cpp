/* The same wall as the ffmpeg tool's xstack and as GStreamer's compositor build it. */
#include "walls.h"

namespace wallbench
{

std::vector<std::string> xstack_command(const Mix &mix)
{
    std::vector<std::string> command = {"ffmpeg", "-nostdin", "-v", "error"};
    std::string graph, stacked, layout;
    const std::string size = std::to_string(mix.pane_width()) + ":" + std::to_string(mix.pane_height());
    for (int pane = 0; pane < mix.panes(); ++pane) {
        command.insert(command.end(), {"-i", mix.clips[static_cast<size_t>(pane)]});
        const std::string number = std::to_string(pane);
        graph += "[" + number + ":v]scale=" + size + ":flags=bilinear[p" + number + "];";
        stacked += "[p" + number + "]";
        if (pane > 0) layout += "|";
        layout += std::to_string(mix.pane_x(pane)) + "_" + std::to_string(mix.pane_y(pane));
    }
    graph += stacked + "xstack=inputs=" + std::to_string(mix.panes()) + ":layout=" + layout + "[wall]";
    command.insert(command.end(), {"-filter_complex", graph, "-map", "[wall]", "-f", "null", "-"});
    return command;
}

std::vector<std::string> compositor_command(const Mix &mix)
{
    std::vector<std::string> command = {"gst-launch-1.0", "-q", "compositor", "name=wall",
                                        "background=black"};
    for (int pane = 0; pane < mix.panes(); ++pane) {
        const std::string pad = "sink_" + std::to_string(pane) + "::";
        command.push_back(pad + "xpos=" + std::to_string(mix.pane_x(pane)));
        command.push_back(pad + "ypos=" + std::to_string(mix.pane_y(pane)));
        command.push_back(pad + "width=" + std::to_string(mix.pane_width()));
        command.push_back(pad + "height=" + std::to_string(mix.pane_height()));
    }
    command.insert(command.end(),
                   {"!", "video/x-raw,format=I420,width=1920,height=1080", "!", "fakesink", "sync=false"});
    for (int pane = 0; pane < mix.panes(); ++pane) {
        const std::string &clip = mix.clips[static_cast<size_t>(pane)];
        const bool h265 = clip.find("h265") != std::string::npos;
        command.insert(command.end(),
                       {"filesrc", "location=" + clip, "!", "matroskademux", "!",
                        h265 ? "h265parse" : "h264parse", "!", h265 ? "avdec_h265" : "avdec_h264", "!",
                        "queue", "!", "wall.sink_" + std::to_string(pane)});
    }
    return command;
}

} // namespace wallbench
