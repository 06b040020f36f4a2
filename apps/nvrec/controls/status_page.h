/*
 * status_page.h - the recorder's status over HTTP, when it is asked for:
 *
 *   GET /          the table of "nvrec status", as text
 *   GET /json      the same for programs
 *   GET /metrics   the same for Prometheus
 *
 * A page with a token answers only requests that carry the token: "Authorization: Bearer TOKEN", or
 * ?token=TOKEN. A page without one listens on loopback only, and answers only requests whose host is a name
 * of loopback, so that no web page of another host can reach it through a browser.
 *
 * Threads: the HTTP library's own, which asks as a client of the control socket does.
 */
#pragma once

#include <functional>
#include <string>

#include "wall/module.h"

struct MHD_Daemon;

namespace nvrec
{

struct PageOptions {
    std::string host; /* a number, IPv4 or IPv6; empty = there is no page */
    uint16_t port = 0;
    bool ipv6 = false;
    std::string token; /* empty = of nobody */
};

class StatusPage final : public Module
{
public:
    /** Answers "status", "status json" and "metrics" as the control socket does. Any thread but the main. */
    using Ask = std::function<std::string(const std::string &request)>;

    StatusPage(PageOptions options, Ask ask) : options_(std::move(options)), ask_(std::move(ask)) {}
    ~StatusPage() override { stop(); }

    bool start(WallControl &wall) override;
    void stop() override;

    /** Whether a request may be answered. @param host, authorization  its header fields, empty = none */
    bool admits(const std::string &host, const std::string &authorization, const std::string &token) const;

    struct Answer {
        unsigned status;
        const char *type;
        std::string text;
    };
    Answer answer(const std::string &path) const;

private:
    const PageOptions options_;
    const Ask ask_;
    MHD_Daemon *daemon_ = nullptr;
};

} // namespace nvrec
