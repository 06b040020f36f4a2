/* secrets.cpp - see secrets.h. */
#include "config/secrets.h"

#include <algorithm>
#include <cstdio>

#include "config/camera_reader.h"
#include "config/private_file.h"

namespace nvrec::config
{
namespace
{

void read_camera_secrets(TableReader &cameras, const std::string &name, Config *config)
{
    TableReader table = cameras.table(name);
    const int channel = config->channel_of(name);
    std::string user;
    std::string password;
    table.text("user", &user);
    table.text("password", &password);
    table.finish();
    if (channel < 0) {
        std::vector<std::string_view> names;
        for (const Camera &camera : config->cameras)
            names.push_back(camera.name);
        return table.fault("", "there is no camera of that name" + suggestion(name, names));
    }
    Camera &camera = config->cameras[static_cast<size_t>(channel)];
    if (!has_scheme(camera.main)) return table.fault("", "this camera is a file");
    if (!user.empty()) camera.user = user;
    if (!password.empty()) camera.password = password;
}

} // namespace

void read_token(TableReader &status, std::string *token)
{
    constexpr size_t kShortestToken = 16;
    std::string given;
    status.text("token", &given);
    if (given.empty()) return;
    *token = given;
    if (given.size() < kShortestToken)
        status.fault("token", "it has fewer than " + std::to_string(kShortestToken) + " letters");
}

void read_secrets(const std::string &path, Config *config, Faults *faults)
{
    const FileText file = read_file(path);
    if (!file.error.empty()) {
        faults->push_back({path, 0, "", file.error});
        return;
    }
    if (!file.is_private) {
        char mode[8];
        std::snprintf(mode, sizeof mode, "%04o", file.mode);
        faults->push_back({path, 0, "",
                           std::string("others can read it, or it is somebody else's (mode ") + mode +
                               "): it is not used; chmod 600"});
        return;
    }
    const Parsed parsed = parse_toml(file.text);
    if (!parsed.error.empty()) {
        /* The parser's message is left out: it may quote the file, and so a password. */
        faults->push_back({path, parsed.line, "", "it is not TOML"});
        return;
    }
    TableReader root(&parsed.root, "", path, faults);
    TableReader cameras = root.table("camera");
    const Value *tables = root.find("camera");
    if (tables && tables->kind == Value::Kind::kTable) {
        for (const auto &[name, table] : tables->members)
            read_camera_secrets(cameras, name, config);
    }
    TableReader status = root.table("status");
    read_token(status, &config->status.token);
    status.finish();
    root.finish();
}

} // namespace nvrec::config
