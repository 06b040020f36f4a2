/* The recorder's control socket: who may connect, what may stand in its place, what it answers. */
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "controls/control_socket.h"
#include "nvrec_run.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;
using Real = std::chrono::steady_clock;

std::string repeat(const std::string &request)
{
    return request == "fail" ? "error: as asked\n" : "ok\n" + request + "\n";
}

class ControlSocket : public testing::Test
{
protected:
    std::string path_ = scratch().file("socket");

    static ScratchDirectory &scratch()
    {
        static ScratchDirectory directory;
        return directory;
    }

    int connected() const
    {
        const int connection = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(connect(connection, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        return connection;
    }

    static std::string rest_of(int connection)
    {
        std::string text;
        char letter;
        ssize_t count = 0;
        while ((count = recv(connection, &letter, 1, 0)) == 1)
            text += letter;
        EXPECT_EQ(count, 0) << "it was reset: " << std::strerror(errno);
        close(connection);
        return text;
    }

    /* Send bytes as they are and take what comes back until the end. */
    std::string exchange(const std::string &bytes) const
    {
        const int connection = connected();
        EXPECT_EQ(send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(bytes.size()));
        shutdown(connection, SHUT_WR);
        return rest_of(connection);
    }
};

TEST_F(ControlSocket, AnswersOneRequestAConnection)
{
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening) << server.error();
    for (const char *request : {"one", "two words"}) {
        const auto reply = ask_recorder(path_, request);
        ASSERT_TRUE(reply);
        EXPECT_TRUE(reply->ok);
        EXPECT_EQ(reply->text, std::string(request) + "\n");
    }
    const auto refused = ask_recorder(path_, "fail");
    ASSERT_TRUE(refused);
    EXPECT_FALSE(refused->ok);
    EXPECT_EQ(refused->text, "as asked");
}

TEST_F(ControlSocket, BelongsToItsUserAloneAndGoesWithTheRecorder)
{
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening);
    struct stat found;
    ASSERT_EQ(stat(path_.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0600u);
    server.stop();
    EXPECT_NE(stat(path_.c_str(), &found), 0);
    EXPECT_FALSE(ask_recorder(path_, "one"));
}

TEST_F(ControlSocket, RequestsThatAreNoneAreAnsweredToo)
{
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening);
    const std::string too_long = "error: a request is one line of at most 255 bytes\n";
    EXPECT_EQ(exchange(std::string(10000, 'x')).substr(0, 7), "error: ");
    EXPECT_EQ(exchange(std::string(256, 'x')), too_long);
    EXPECT_EQ(exchange("cut off"), too_long);
    EXPECT_EQ(exchange(""), too_long);
    EXPECT_EQ(exchange(std::string(255, 'x') + "\n"), "ok\n" + std::string(255, 'x') + "\n");
    EXPECT_TRUE(ask_recorder(path_, "still there"));
}

TEST_F(ControlSocket, AClientThatSendsALetterNowAndThenHoldsNobodyUp)
{
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening);
    const auto began = Real::now();
    const int slow = connected();
    std::vector<int> silent;
    for (int i = 0; i < 20; ++i)
        silent.push_back(connected());
    ASSERT_EQ(send(slow, "x", 1, MSG_NOSIGNAL), 1);
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(ask_recorder(path_, "one"));
    EXPECT_LT(Real::now() - began, 1s);
    std::this_thread::sleep_until(began + 1500ms);
    ASSERT_EQ(send(slow, "x", 1, MSG_NOSIGNAL), 1);
    EXPECT_EQ(rest_of(slow).substr(0, 7), "error: ");
    EXPECT_LT(Real::now() - began, 2500ms) << "another letter is no reason to wait longer";
    for (const int connection : silent)
        EXPECT_EQ(rest_of(connection).substr(0, 7), "error: ");
}

TEST_F(ControlSocket, ARequestThatTakesItsTimeHoldsUpNoOther)
{
    std::mutex lock;
    std::condition_variable changed;
    bool begun = false, released = false;
    ControlServer server;
    ASSERT_EQ(server.start(path_,
                           [&](const std::string &request) {
                               if (request != "slow") return repeat(request);
                               std::unique_lock guard(lock);
                               begun = true;
                               changed.notify_all();
                               changed.wait(guard, [&] { return released; });
                               return std::string("ok\nat last\n");
                           }),
              ControlServer::Start::kListening);
    std::thread waiting([&] {
        const auto reply = ask_recorder(path_, "slow");
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->text, "at last\n");
    });
    std::unique_lock guard(lock);
    changed.wait(guard, [&] { return begun; });
    guard.unlock();
    EXPECT_TRUE(ask_recorder(path_, "one"));
    guard.lock();
    released = true;
    changed.notify_all();
    guard.unlock();
    waiting.join();
}

TEST_F(ControlSocket, ClientsDoNotDelayTheEnd)
{
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening);
    const int half = connected();
    const int silent = connected();
    ASSERT_EQ(send(half, "hal", 3, MSG_NOSIGNAL), 3);
    ASSERT_TRUE(ask_recorder(path_, "one")) << "the others have been accepted";
    const auto began = Real::now();
    server.stop();
    EXPECT_LT(Real::now() - began, 500ms);
    close(half);
    close(silent);
}

TEST_F(ControlSocket, AFarTooLongRequestGetsItsErrorAndNoReset)
{
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening);
    EXPECT_EQ(exchange(std::string(4 << 20, 'x')), "error: a request is one line of at most 255 bytes\n");
    EXPECT_EQ(exchange("one\n" + std::string(100'000, 'x')), "ok\none\n") << "what follows a line is left";
    EXPECT_TRUE(ask_recorder(path_, "still there"));
}

TEST_F(ControlSocket, MoreClientsThanItTakesMakeRoomForOneAnother)
{
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening);
    std::vector<int> silent;
    for (int i = 0; i < 100; ++i)
        silent.push_back(connected());
    const auto began = Real::now();
    EXPECT_TRUE(ask_recorder(path_, "one"));
    EXPECT_LT(Real::now() - began, 1s);
    for (const int connection : silent)
        close(connection);
}

double processor_seconds()
{
    rusage used = {};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
           static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec) / 1e6;
}

TEST_F(ControlSocket, OutOfDescriptorsItTurnsClientsAwayAndDoesNotSpin)
{
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening);
    const int client = socket(AF_UNIX, SOCK_STREAM, 0);
    std::vector<int> taken;
    rlimit before = {};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few = {64, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    for (int one = 0; (one = open("/dev/null", O_RDONLY)) >= 0;)
        taken.push_back(one);
    ASSERT_EQ(errno, EMFILE);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(connect(client, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    const double used_before = processor_seconds();
    std::string text;
    char letter;
    while (recv(client, &letter, 1, 0) == 1)
        text += letter;
    EXPECT_EQ(text, "error: the recorder is out of descriptors\n");
    std::this_thread::sleep_for(500ms);
    EXPECT_LT(processor_seconds() - used_before, 0.1);
    for (const int one : taken)
        close(one);
    setrlimit(RLIMIT_NOFILE, &before);
    close(client);
    EXPECT_TRUE(ask_recorder(path_, "one")) << "a second later at the latest";
}

TEST_F(ControlSocket, ADirectoryThatOthersCanWriteToIsRefused)
{
    const std::string directory = scratch().file("shared");
    std::filesystem::create_directory(directory);
    for (const mode_t mode : {0777, 01777, 0775, 0770}) {
        ASSERT_EQ(chmod(directory.c_str(), mode), 0);
        ControlServer server;
        EXPECT_EQ(server.start(directory + "/socket", repeat), ControlServer::Start::kFailed) << mode;
        EXPECT_NE(server.error().find("others can write to the directory " + directory), std::string::npos);
        EXPECT_TRUE(std::filesystem::is_empty(directory)) << "not even the lock is left there";
    }
    for (const mode_t mode : {0700, 0755}) {
        ASSERT_EQ(chmod(directory.c_str(), mode), 0);
        ControlServer server;
        EXPECT_EQ(server.start(directory + "/socket", repeat), ControlServer::Start::kListening);
    }
}

TEST_F(ControlSocket, OneThatWasLeftBehindIsReplaced)
{
    const int left = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(bind(left, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    close(left);
    EXPECT_FALSE(ask_recorder(path_, "one")) << "nobody listens";
    ControlServer server;
    ASSERT_EQ(server.start(path_, repeat), ControlServer::Start::kListening) << server.error();
    EXPECT_TRUE(ask_recorder(path_, "one"));
}

TEST_F(ControlSocket, ThatOfARunningRecorderIsNot)
{
    ControlServer first, second;
    ASSERT_EQ(first.start(path_, repeat), ControlServer::Start::kListening);
    EXPECT_EQ(second.start(path_, repeat), ControlServer::Start::kTaken);
    EXPECT_EQ(second.error(), "another recorder listens there");
    EXPECT_TRUE(ask_recorder(path_, "one"));
    first.stop();
    EXPECT_EQ(second.start(path_, repeat), ControlServer::Start::kListening);
}

TEST_F(ControlSocket, AFileThatIsNoSocketIsLeftAlone)
{
    std::ofstream(path_) << "precious";
    ControlServer server;
    EXPECT_EQ(server.start(path_, repeat), ControlServer::Start::kFailed);
    EXPECT_EQ(file_text(path_), "precious");
}

TEST_F(ControlSocket, PathsThatCannotBeAreRefused)
{
    ControlServer server;
    EXPECT_EQ(server.start("", repeat), ControlServer::Start::kFailed);
    EXPECT_EQ(server.start("/" + std::string(200, 'x'), repeat), ControlServer::Start::kFailed);
    EXPECT_EQ(server.start("/proc/none/socket", repeat), ControlServer::Start::kFailed);
    EXPECT_FALSE(ask_recorder("/" + std::string(200, 'x'), "one"));
}

TEST_F(ControlSocket, TheDefaultDirectoryMustBeTheUsersOwn)
{
    std::filesystem::create_directory(scratch().file("open"));
    std::filesystem::permissions(scratch().file("open"), std::filesystem::perms::all);
    setenv("XDG_RUNTIME_DIR", scratch().file("open").c_str(), 1);
    ControlServer server;
    EXPECT_EQ(server.start(default_control_path(), repeat), ControlServer::Start::kFailed);
    EXPECT_NE(server.error().find("is not a directory of this user alone"), std::string::npos);
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(default_control_path(), "/tmp/nvrec-" + std::to_string(getuid()) + "/nvrec.socket");
}

} // namespace
