/* The recorder's control socket: who may connect, what may stand in its place, what it answers. */
#include <cstring>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "controls/control_socket.h"
#include "nvrec_run.h"

namespace
{

using namespace nvrec;

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

    /* Send bytes as they are and take what comes back until the end. */
    std::string exchange(const std::string &bytes) const
    {
        const int connection = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(connect(connection, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        EXPECT_EQ(send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(bytes.size()));
        shutdown(connection, SHUT_WR);
        std::string text;
        char letter;
        while (recv(connection, &letter, 1, 0) == 1)
            text += letter;
        close(connection);
        return text;
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
