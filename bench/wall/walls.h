/* walls.h - the contestants: each shows every frame of a mix once and exits. */
#pragma once

#include "clip.h"
#include "mix.h"

namespace wallbench
{

/** In this process. 0, or 1 after a message. */
int run_bare_loop(const Mix &mix);
int run_library_wall(const Mix &mix);

/** As commands of the tools. */
std::vector<std::string> xstack_command(const Mix &mix);
std::vector<std::string> compositor_command(const Mix &mix);

/** The clips of a mix, each loaded once. */
class LoadedClips
{
public:
    explicit LoadedClips(const Mix &mix);
    const Clip &of_pane(int pane) const { return clips_[index_[static_cast<size_t>(pane)]]; }

private:
    std::vector<Clip> clips_;
    std::vector<size_t> index_; // a pane's clip
};

} // namespace wallbench
