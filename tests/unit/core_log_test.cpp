/* The log through a function of the application: whole texts, one at a time, whoever sets it meanwhile. */
#include <pthread.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "nvrhal.h"
#include "recording_expect.h"

namespace
{

class Log : public testing::Test
{
protected:
    void TearDown() override { nvrhal_set_log(nullptr, nullptr); } // what the test kept goes now
};

using Texts = std::vector<std::string>;

void keep_text(const char *text, size_t length, void *user)
{
    static_cast<Texts *>(user)->emplace_back(text, length);
}

/** Print a text that has `text` in it, and some others after it. */
void print_around(const std::string &text)
{
    uint8_t units[4] = {}; // one unit is room enough, and the zero unit behind it is not counted
    FromGb2312ToUnicode(reinterpret_cast<const uint8_t *>(text.c_str()), static_cast<int>(text.size()), units,
                        2);
}

std::string printed_around(const std::string &text)
{
    return "len=" + std::to_string(text.size()) + ", pInGb2312: " + text + "\n";
}

TEST_F(Log, GoesToTheFunctionAndNotToStandardOutput)
{
    Texts texts;
    nvrhal_set_log(keep_text, &texts);
    ext_keyboard_zoom_flag(7);
    EXPECT_EQ(texts, Texts{"keyboard zoom mode 7\n"});
    EXPECT_EQ(recording::printed_text(), "");
}

TEST_F(Log, GoesToStandardOutputAgainWithoutAFunction)
{
    Texts texts;
    nvrhal_set_log(keep_text, &texts);
    nvrhal_set_log(nullptr, &texts);
    ext_keyboard_zoom_flag(7);
    EXPECT_EQ(texts, Texts{});
    EXPECT_EQ(recording::printed_text(), "keyboard zoom mode 7\n");
}

TEST_F(Log, FollowsTheFunctionAndTheUserThatWereSetLast)
{
    Texts first, second;
    nvrhal_set_log(keep_text, &first);
    ext_keyboard_zoom_flag(1);
    nvrhal_set_log(keep_text, &second);
    ext_keyboard_zoom_flag(2);
    EXPECT_EQ(first, Texts{"keyboard zoom mode 1\n"});
    EXPECT_EQ(second, Texts{"keyboard zoom mode 2\n"});
}

TEST_F(Log, LeavesResultsThatCountWhatWasPrintedAsTheyAre)
{
    const int32_t printed = ext_keyboard_zoom_flag(12345);
    Texts texts;
    nvrhal_set_log(keep_text, &texts);
    EXPECT_EQ(ext_keyboard_zoom_flag(12345), printed);
    EXPECT_EQ(printed, static_cast<int32_t>(std::strlen("keyboard zoom mode 12345\n")));
}

void keep_ended_text(const char *text, size_t length, void *user)
{
    EXPECT_EQ(text[length], '\0');
    keep_text(text, length, user);
}

TEST_F(Log, NeverCutsATextAndEndsItWithAZeroByte)
{
    std::vector<size_t> lengths = {0, 1, 100, 4096, 100000, 3000000};
    for (size_t length = 220; length < 260; ++length) // about the size of the library's own buffer
        lengths.push_back(length);
    for (const size_t length : lengths) {
        std::string text;
        for (size_t i = 0; i < length; ++i)
            text += static_cast<char>('a' + i % 23);
        Texts texts;
        nvrhal_set_log(keep_ended_text, &texts);
        print_around(text);
        ASSERT_FALSE(texts.empty());
        EXPECT_TRUE(texts.front() == printed_around(text)) << "length " << length;
    }
    nvrhal_set_log(nullptr, nullptr);
    EXPECT_EQ(recording::printed_text(), "");
}

TEST_F(Log, GivesTheFunctionTheLastWordOfACodeThatCannotBeWritten)
{
    EXPECT_EXIT(
        {
            nvrhal_set_log(
                [](const char *text, size_t length, void *) {
                    std::fprintf(stderr, "the function got: %.*s", static_cast<int>(length), text);
                },
                nullptr);
            qrencode("text", "/nonexistent/code.bmp");
        },
        testing::ExitedWithCode(1), "the function got: Failed to create file: /nonexistent/code.bmp\n");
}

/* One function and the only user it may ever be called with. */
struct Listener {
    std::atomic<bool> is_set{false};
    std::atomic<unsigned> texts{0};
    std::atomic<unsigned> wrong{0}; // called with another's user, or while it was not set
    std::atomic<unsigned> at_once{0};
};
Listener listeners[2];

template <int which> void listen(const char *text, size_t length, void *user)
{
    auto *listener = static_cast<Listener *>(user);
    if (listener != &listeners[which] || !listener->is_set || listener->at_once++ != 0) ++listener->wrong;
    if (length == 0 || text[length - 1] != '\n') ++listener->wrong;
    ++listener->texts;
    --listener->at_once;
}

TEST_F(Log, CanBeSetWhileOthersPrint)
{
    constexpr unsigned kPrinters = 4, kEnough = 500; // texts for each of the two
    std::atomic<bool> stop{false};
    std::atomic<unsigned> printed{0};
    std::vector<std::thread> printers;
    for (unsigned i = 0; i < kPrinters; ++i) {
        printers.emplace_back([&stop, &printed] {
            for (; !stop; ++printed)
                ext_keyboard_zoom_flag(1);
        });
    }
    unsigned changes = 0;
    for (; listeners[0].texts < kEnough || listeners[1].texts < kEnough; ++changes) {
        const unsigned which = changes % 3; // the third is standard output
        if (which < 2) listeners[which].is_set = true;
        if (which == 0) nvrhal_set_log(listen<0>, &listeners[0]);
        if (which == 1) nvrhal_set_log(listen<1>, &listeners[1]);
        if (which == 2) nvrhal_set_log(nullptr, nullptr);
        for (unsigned other = 0; other < 2; ++other)
            if (other != which) listeners[other].is_set = false; // set_log has returned: it must not run
        std::this_thread::yield();
    }
    nvrhal_set_log(nullptr, nullptr);
    stop = true;
    for (std::thread &printer : printers)
        printer.join();
    EXPECT_EQ(listeners[0].wrong, 0u);
    EXPECT_EQ(listeners[1].wrong, 0u);
    EXPECT_EQ(listeners[0].texts + listeners[1].texts + recording::times_printed("keyboard zoom mode 1"),
              printed)
        << "after " << changes << " changes";
}

std::atomic<bool> function_runs, end_is_asked;

void be_ended(const char *, size_t, void *)
{
    function_runs = true;
    while (!end_is_asked)
        std::this_thread::yield();
    pthread_testcancel();
}

TEST_F(Log, OutlivesAThreadThatIsEndedWhileItPrints)
{
    nvrhal_set_log(be_ended, nullptr);
    pthread_t printer;
    ASSERT_EQ(pthread_create(
                  &printer, nullptr,
                  [](void *) -> void * {
                      ext_keyboard_zoom_flag(1);
                      pthread_testcancel();
                      return nullptr;
                  },
                  nullptr),
              0);
    while (!function_runs)
        std::this_thread::yield();
    ASSERT_EQ(pthread_cancel(printer), 0);
    end_is_asked = true;
    void *result = nullptr;
    ASSERT_EQ(pthread_join(printer, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);

    Texts texts;
    nvrhal_set_log(keep_text, &texts); // would wait for ever if the thread had taken the lock along
    ext_keyboard_zoom_flag(2);
    EXPECT_EQ(texts, Texts{"keyboard zoom mode 2\n"});
}

} // namespace
