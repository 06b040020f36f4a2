/*
 * device_node.h - a device node that the recorder reads itself, because the library leaves it to the
 * application: the mouse, and the keys of the front panel.
 *
 * Threads: one that reads; any may close it while nobody reads.
 */
#pragma once

#include <chrono>
#include <cstddef>

namespace nvrec
{

class DeviceNode
{
public:
    DeviceNode() = default;
    ~DeviceNode() { close(); }
    DeviceNode(const DeviceNode &) = delete;
    DeviceNode &operator=(const DeviceNode &) = delete;

    /**
     * Open it for reading.
     * @param patience  how long a read waits for a record; the board in software knows it by itself
     * @return false = there is none.
     */
    bool open(const char *path, std::chrono::milliseconds patience);

    bool is_open() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

    /** One record. @return bytes read, 0 = none came, negative = the node is gone. */
    int read(void *record, size_t size) const;

    void close();

private:
    int descriptor_ = -1;
    std::chrono::milliseconds patience_{};
};

} // namespace nvrec
