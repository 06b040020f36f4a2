/*
 * reload.h - a changed configuration, taken up while the recorder runs.
 *
 * A camera is known by its name and keeps its channel: one that is unchanged is not touched, and its
 * recording loses no frame. One that is changed is connected anew, one that is gone frees its channel,
 * and a new one takes a free channel. What start-up fixes, the number of channels and the size of the
 * screen among them, is told to need a restart.
 *
 * A file with a fault changes nothing.
 *
 * Threads: main.
 */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "config/config.h"
#include "wall/module.h"

namespace nvrec
{

class Reload final : public Module
{
public:
    /** What a change is handed to; those that are empty are not there. */
    struct Takers {
        std::function<void(int channel, const config::Plan &plan)> plan;
        std::function<void(const std::vector<config::Camera> &channels)> plans; /* behind all of them */
        std::function<void(const config::Retention &retention)> retention;
    };

    explicit Reload(config::Config running);

    /** Before start(). */
    Takers &takers() { return takers_; }

    /** The configuration that holds now. */
    const config::Config &running() const { return running_; }

    bool start(WallControl &wall) override;

    /** Keeps a recorder standing whose cameras have all ended. */
    bool busy() const override { return true; }

    /** Read the file again and take it up. @param ok  false = it has faults. @return a line each */
    std::string reload(bool *ok);

    /** The same, told on the terminal and in the log: for SIGHUP. */
    void reload_and_tell();

private:
    void take(const config::Config &fresh);
    void take_cameras(const config::Config &fresh);
    void change(int channel, const config::Camera &to);
    void add(const config::Camera &camera);
    void take_screen(const config::Config &fresh);
    void note_taken(const config::Config &fresh);
    void tell(const std::string &line);
    void needs_restart(const std::string &what);

    config::Config running_;
    Takers takers_;
    std::vector<config::Camera> channels_; /* a name = a camera, none = free */
    WallControl *wall_ = nullptr;
    std::string lines_; /* of the reload at hand */
};

} // namespace nvrec
