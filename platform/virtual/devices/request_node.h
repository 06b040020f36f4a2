/*
 * request_node.h - a node whose openings share one state and only take requests.
 */
#ifndef VBOARD_REQUEST_NODE_H
#define VBOARD_REQUEST_NODE_H

#include <cerrno>
#include <memory>

#include "devices/device_node.h"
#include "media/call.h"

namespace vboard
{

class RequestNode : public DeviceNode
{
public:
    explicit RequestNode(const char *path) : path_(path) {}
    const char *path() const override { return path_; }
    std::shared_ptr<OpenNode> open(int) override { return std::make_shared<Opening>(*this); }

protected:
    /* A request to any opening; any thread. */
    virtual int request(unsigned long code, void *argument) = 0;

    /* The driver's own refusals: a request it does not know, a record it does not accept. */
    int refuse_request(unsigned long code) const
    {
        refuse_plainly("%s does not know request 0x%lx", path_, code);
        errno = ENOTTY;
        return -1;
    }
    int refuse_argument(const char *why) const
    {
        refuse_plainly("%s: %s", path_, why);
        errno = EINVAL;
        return -1;
    }

private:
    class Opening : public OpenNode
    {
    public:
        explicit Opening(RequestNode &node) : node_(node) {}
        int ioctl(unsigned long code, void *argument) override { return node_.request(code, argument); }

    private:
        RequestNode &node_;
    };

    const char *path_;
};

} // namespace vboard

#endif
