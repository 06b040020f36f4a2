/*
 * service.h - tells the service manager that the recorder has started, and that it ends. health.h tells it
 * that the recorder is alive.
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
