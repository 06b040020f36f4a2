/* module_list.cpp - see module_list.h. */
#include "wall/module_list.h"

#include <algorithm>

namespace nvrec
{

bool ModuleList::start(WallControl &wall)
{
    while (started_ < modules_.size()) {
        if (!modules_[started_++]->start(wall)) return false;
    }
    return true;
}

void ModuleList::stop()
{
    for (size_t i = started_; i-- > 0;)
        modules_[i]->stop();
}

Clock::time_point ModuleList::take_turns(Clock::time_point now)
{
    Clock::time_point next = Clock::time_point::max();
    for (const auto &module : modules_)
        next = std::min(next, module->take_turn(now));
    return next;
}

void ModuleList::before_layout()
{
    for (size_t i = 0; i < started_; ++i)
        modules_[i]->before_layout();
}

void ModuleList::on_layout()
{
    for (size_t i = 0; i < started_; ++i)
        modules_[i]->on_layout();
}

void ModuleList::before_last_pictures()
{
    for (size_t i = 0; i < started_; ++i)
        modules_[i]->before_last_pictures();
}

void ModuleList::on_camera_changed(int channel)
{
    for (size_t i = 0; i < started_; ++i)
        modules_[i]->on_camera_changed(channel);
}

void ModuleList::on_camera_replaced(int channel)
{
    for (size_t i = 0; i < started_; ++i)
        modules_[i]->on_camera_replaced(channel);
}

void ModuleList::offer(const std::function<bool(Module &)> &taken)
{
    std::vector<Module *> order;
    for (size_t i = started_; i-- > 0;)
        order.push_back(modules_[i].get());
    std::ranges::stable_sort(order, {}, [](const Module *module) { return module->input_layer(); });
    for (Module *module : order) {
        if (taken(*module)) return;
    }
}

void ModuleList::key(Key key)
{
    offer([key](Module &module) { return module.on_key(key); });
}

void ModuleList::pointer(const PointerEvent &event)
{
    offer([&event](Module &module) { return module.on_pointer(event); });
}

void ModuleList::on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts)
{
    for (const auto &module : modules_)
        module->on_unit(channel, unit, facts);
}

void ModuleList::on_audio(int channel, const SoundBlock &block)
{
    for (const auto &module : modules_)
        module->on_audio(channel, block);
}

void ModuleList::on_sound_packet(int channel, const SoundPacket &packet)
{
    for (const auto &module : modules_)
        module->on_sound_packet(channel, packet);
}

bool ModuleList::busy() const
{
    return std::any_of(modules_.begin(), modules_.end(), [](const auto &module) { return module->busy(); });
}

std::pair<uint32_t, uint32_t> ModuleList::picture_size(int channel) const
{
    for (const auto &module : modules_) {
        const auto size = module->picture_size(channel);
        if (size.first > 0 && size.second > 0) return size;
    }
    return {0, 0};
}

bool ModuleList::ask_whether_to_end()
{
    for (size_t i = 0; i < started_; ++i) {
        if (modules_[i]->ask_whether_to_end()) return true;
    }
    return false;
}

std::string ModuleList::progress(double seconds) const
{
    for (const auto &module : modules_) {
        std::string line = module->progress(seconds);
        if (!line.empty()) return line;
    }
    return {};
}

void ModuleList::report()
{
    for (size_t i = 0; i < started_; ++i)
        modules_[i]->report();
}

std::vector<std::string> ModuleList::json() const
{
    std::vector<std::string> members;
    for (size_t i = 0; i < started_; ++i) {
        std::string member = modules_[i]->json();
        if (!member.empty()) members.push_back(std::move(member));
    }
    return members;
}

} // namespace nvrec
