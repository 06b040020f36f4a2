/* emulated_node.cpp - see emulated_node.h. */
#include "emulated_node.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <umockdev.h>
#include <utility>

namespace
{

[[noreturn]] void stop(const char *what, const GError *error)
{
    std::fprintf(stderr, "emulated node: %s: %s\n", what, error != nullptr ? error->message : "no reason");
    std::abort();
}

void complete(UMockdevIoctlClient *client, int result)
{
    umockdev_ioctl_client_complete(client, result < 0 ? -1 : result, result < 0 ? -result : 0);
}

gboolean on_ioctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, gpointer node)
{
    const NodeRequest request(umockdev_ioctl_client_get_request(client), client);
    complete(client, static_cast<EmulatedNode *>(node)->answer(request));
    return TRUE;
}

gboolean on_read(UMockdevIoctlBase *, UMockdevIoctlClient *client, gpointer node)
{
    complete(client, static_cast<EmulatedNode *>(node)->read(client));
    return TRUE;
}

/* The record of `size` bytes that a request's argument points at; the argument itself belongs to the client.
 */
UMockdevIoctlData *resolve(UMockdevIoctlClient *client, size_t size)
{
    GError *error = nullptr;
    UMockdevIoctlData *argument = umockdev_ioctl_client_get_arg(client);
    UMockdevIoctlData *record = umockdev_ioctl_data_resolve(argument, 0, size, &error);
    if (record == nullptr) stop("a request without its record", error);
    return record;
}

} // namespace

uintptr_t NodeRequest::value() const
{
    UMockdevIoctlData *argument = umockdev_ioctl_client_get_arg(client_);
    uintptr_t value = 0;
    std::memcpy(&value, argument->data, sizeof value);
    return value;
}

void NodeRequest::copy_in(void *record, size_t size) const
{
    UMockdevIoctlData *data = resolve(client_, size);
    std::memcpy(record, data->data, size);
    umockdev_ioctl_data_unref(data);
}

void NodeRequest::copy_out(const void *record, size_t size) const
{
    UMockdevIoctlData *data = resolve(client_, size);
    // The parameter is not const, although the bytes are only read.
    umockdev_ioctl_data_update(data, 0, static_cast<guint8 *>(const_cast<void *>(record)),
                               static_cast<gint>(size));
    umockdev_ioctl_data_unref(data);
}

EmulatedNode::EmulatedNode(const std::string &path, Driver driver)
    : driver_(driver != nullptr ? std::move(driver) : [](const NodeRequest &) { return -ENOTTY; }),
      testbed_(umockdev_testbed_new()),
      handler_(static_cast<UMockdevIoctlBase *>(g_object_new(UMOCKDEV_TYPE_IOCTL_BASE, nullptr)))
{
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::string device =
        "P: /devices/" + name + "\nN: " + name + "\nE: DEVNAME=" + path + "\nE: SUBSYSTEM=misc\n";
    GError *error = nullptr;
    if (!umockdev_testbed_add_from_string(testbed_, device.c_str(), &error)) stop(path.c_str(), error);
    g_signal_connect(handler_, "handle-ioctl", G_CALLBACK(on_ioctl), this);
    g_signal_connect(handler_, "handle-read", G_CALLBACK(on_read), this);
    if (!umockdev_testbed_attach_ioctl(testbed_, path.c_str(), handler_, &error)) stop(path.c_str(), error);
}

EmulatedNode::~EmulatedNode()
{
    g_object_unref(testbed_);
    g_object_unref(handler_);
}

void EmulatedNode::fail_reads(int error)
{
    const std::lock_guard guard(mutex_);
    read_error_ = error;
}

int EmulatedNode::read(_UMockdevIoctlClient *client)
{
    const std::lock_guard guard(mutex_);
    if (read_error_ != 0) return -read_error_;
    if (events_.empty()) return 0;
    UMockdevIoctlData *buffer = umockdev_ioctl_client_get_arg(client);
    std::vector<uint8_t> &event = events_.front();
    const bool fits = static_cast<size_t>(buffer->data_len) >= event.size();
    const int size = fits ? static_cast<int>(event.size()) : -EINVAL;
    if (fits) {
        umockdev_ioctl_data_update(buffer, 0, event.data(), size);
        events_.pop_front();
    }
    return size;
}
