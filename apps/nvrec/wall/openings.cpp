/* openings.cpp - see openings.h. */
#include "wall/openings.h"

#include <algorithm>

namespace nvrec
{

void Openings::start(Feeder &camera)
{
    Opening &opening = openings_.emplace_back();
    opening.camera = &camera;
    opening.thread = std::thread([this, &opening] {
        opening.camera->open();
        opening.done = true;
        woken_();
    });
}

std::vector<Feeder *> Openings::take_finished()
{
    std::vector<Feeder *> finished;
    for (auto opening = openings_.begin(); opening != openings_.end();) {
        if (!opening->done) {
            ++opening;
            continue;
        }
        finished.push_back(opening->camera);
        opening->thread.join();
        opening = openings_.erase(opening);
    }
    return finished;
}

size_t Openings::wait_for_all()
{
    const size_t count = openings_.size();
    for (Opening &opening : openings_)
        opening.thread.join();
    openings_.clear();
    return count;
}

bool Openings::contains(const Feeder &camera) const
{
    return std::any_of(openings_.begin(), openings_.end(),
                       [&camera](const Opening &opening) { return opening.camera == &camera; });
}

bool Openings::only_live() const
{
    return std::all_of(openings_.begin(), openings_.end(),
                       [](const Opening &opening) { return opening.camera->input().live(); });
}

} // namespace nvrec
