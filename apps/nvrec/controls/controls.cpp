/* controls.cpp - see controls.h. */
#include "controls/controls.h"

#include <vector>

#include "controls/control_requests.h"
#include "controls/health.h"
#include "controls/indicators.h"
#include "controls/key_names.h"
#include "controls/keys.h"
#include "controls/keys_navigation.h"
#include "controls/service.h"
#include "host/host.h"
#include "wall/module.h"
#include "wall/wall.h"

namespace nvrec
{
namespace
{

/* The window's keyboard is a remote control. */
void label_window_keys()
{
    std::vector<host::WindowKey> keys;
    for (const Button &button : buttons()) {
        if (button.pc_key) keys.push_back({button.pc_key, button.name});
        /* Without a meaning it would close the window, and with it end what is being recorded. */
        if (button.key == Key::kBack && button.pc_key) keys.push_back({"Escape", button.name});
    }
    host::set_window_keys(keys);
}

} // namespace

/*
 * Stopped in reverse: the keys before the control requests, so that a request for a key that will not come
 * any more has its answer.
 */
void add_controls(Wall &wall, const ControlOptions &options)
{
    label_window_keys();
    auto keys = std::make_unique<Keys>();
    const auto patience =
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.hung_after_s));
    wall.add(std::make_unique<Health>(options.watchdog_s, patience));
    wall.add(std::make_unique<Indicators>());
    wall.add(std::make_unique<Navigation>());
    auto requests = std::make_unique<ControlRequests>(options.socket, *keys, options.hooks);
    auto page =
        std::make_unique<StatusPage>(options.page, [asked = requests.get()](const std::string &request) {
            return asked->answer(request);
        });
    wall.add(std::move(page)); /* stopped behind the requests, which it may be waiting for */
    wall.add(std::move(requests));
    wall.add(std::move(keys));
    wall.add(std::make_unique<Service>()); /* ready when all of these are; the first to end */
}

} // namespace nvrec
