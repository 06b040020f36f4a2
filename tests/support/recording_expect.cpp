/* GoogleTest's events: a fresh platform and a fresh capture for every test. */
#include "recording_expect.h"

#include <cstdio>
#include <string>

namespace recording
{

namespace
{

/* Stands before GoogleTest's own printer in the list of listeners. */
class BeforePrinter : public testing::EmptyTestEventListener
{
    void OnTestPartResult(const testing::TestPartResult &) override { pause_capture(); }
};

/* Stands after it. End events come in reverse order, so this one sees the end of a test first. */
class AfterPrinter : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo &) override
    {
        platform.reset();
        start_capture();
    }
    void OnTestPartResult(const testing::TestPartResult &) override { resume_capture(); }
    void OnTestEnd(const testing::TestInfo &info) override
    {
        std::string text = info.result()->Failed() ? printed_text() : "";
        stop_capture();
        if (!text.empty()) std::printf("--- printed ---\n%s--- end ---\n", text.c_str());
    }
};

} // namespace

bool listen_to_tests()
{
    auto &listeners = testing::UnitTest::GetInstance()->listeners();
    testing::TestEventListener *printer = listeners.Release(listeners.default_result_printer());
    listeners.Append(new BeforePrinter);
    if (printer) listeners.Append(printer);
    listeners.Append(new AfterPrinter);
    return true;
}

} // namespace recording
