/*
 * service.h - tells the service manager that the recorder stands, and that it ends. That it lives is
 * told by health.h.
 *
 * Threads: main.
 */
#pragma once

#include "wall/module.h"

namespace nvrec
{

class Service final : public Module
{
public:
    bool start(WallControl &wall) override;
    void stop() override;
};

} // namespace nvrec
