/*
 * ad_node.h - one request to the analog decoder chips: open the node, ask, close. Nothing stays
 * open, so that the driver can be replaced while the recorder runs. Thread: any.
 */
#pragma once

namespace nvrhal
{

constexpr char kAdSource[] = "vc0725.c";

/** The node, open for a sequence of requests. Closed at the end of the scope. */
class AdNode
{
public:
    AdNode();
    ~AdNode();
    AdNode(const AdNode &) = delete;
    AdNode &operator=(const AdNode &) = delete;

    bool is_open() const { return descriptor_ >= 0; }

    /** Issue a request with its record, null for none. True when the driver took it. */
    bool request(unsigned long request, void *record) const;

private:
    int descriptor_;
};

} // namespace nvrhal
