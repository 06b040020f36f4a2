/* read.cpp - see read.h. */
#include "config/read.h"

#include <algorithm>
#include <filesystem>

#include "config/camera_reader.h"
#include "config/page_address.h"
#include "config/private_file.h"
#include "config/secrets.h"
#include "config/table_reader.h"
#include "console/text.h"
#include "nvrhal/limits.h"
#include "screen/qr_code.h"
#include "wall/layout.h"
#include "wall/session.h"

namespace nvrec::config
{
namespace
{

constexpr int64_t kLongestSegment_s = 86400;
constexpr int64_t kLongestAge_s = int64_t{100} * 365 * 86400;
constexpr int kLongestWatchdog_s = 3600;
constexpr int kMostChannels = NVRHAL_MAX_CAMERAS;

constexpr Choice<Wanted> kWanted[] = {{"auto", Wanted::kAuto}, {"on", Wanted::kOn}, {"off", Wanted::kOff}};
constexpr Choice<Kind> kKinds[] = {{"mp4", Kind::kMp4}, {"mkv", Kind::kMkv}};
constexpr Choice<Level> kLevels[] = {
    {"error", Level::kError}, {"warning", Level::kWarning}, {"info", Level::kInfo}, {"debug", Level::kDebug}};
constexpr Choice<const char *> kLanguages[] = {{"en", "en"}, {"zh", "zh"}};

/* Whether the parser's message, which may quote the file, may contain a password or token. */
bool tells_a_secret(const std::string &text)
{
    const std::string small = small_letters(text);
    return small.find("password") != std::string::npos || small.find("token") != std::string::npos ||
           (small.find("://") != std::string::npos && small.find('@') != std::string::npos);
}

/* The tables of one file, in the order in which docs/nvrec.toml has them. */
class Reader
{
public:
    explicit Reader(const std::string &path) : path_(path) { config_.path = path; }

    Reading read();

private:
    std::string beside(const std::string &path) const;
    void path(TableReader &table, std::string_view key, std::string *into);
    void name(TableReader &table, std::string_view key, std::vector<std::string> names, std::string *into);
    void cameras(TableReader &root);
    void screen(TableReader table);
    void record(TableReader table);
    void retention(TableReader table);
    void sound(TableReader table);
    void board(TableReader table);
    void control(TableReader table);
    void status(TableReader table);
    void log(TableReader table);
    void secrets(TableReader &root);
    void check_privacy(bool is_private);

    const std::string path_;
    Config config_;
    Faults faults_;
    int page_line_ = 0, qr_line_ = 0;
    bool directory_given_ = false; /* rightly or wrongly */
    bool holds_password_ = false;  /* this file, not the secrets' */
};

std::string Reader::beside(const std::string &path) const
{
    return (std::filesystem::path(path_).parent_path() / path).lexically_normal().string();
}

void Reader::path(TableReader &table, std::string_view key, std::string *into)
{
    std::string given;
    table.text(key, &given);
    if (!given.empty()) *into = beside(given);
}

/* One of names that another room has. */
void Reader::name(TableReader &table, std::string_view key, std::vector<std::string> names, std::string *into)
{
    std::string given;
    table.text(key, &given);
    if (given.empty()) return;
    if (std::ranges::find(names, given) != names.end()) {
        *into = given;
        return;
    }
    std::string all;
    for (const std::string &one : names)
        all += (all.empty() ? "" : ", ") + one;
    table.fault(key, "\"" + given + "\" is none of " + all +
                         suggestion(given, std::vector<std::string_view>(names.begin(), names.end())));
}

Reading Reader::read()
{
    const FileText file = read_file(path_);
    if (!file.error.empty()) {
        faults_.push_back({path_, 0, "", file.error});
        return {config_, faults_};
    }
    const Parsed parsed = parse_toml(file.text);
    if (!parsed.error.empty()) {
        faults_.push_back(
            {path_, parsed.line, "", tells_a_secret(file.text) ? "it is not TOML" : parsed.error});
        return {config_, faults_};
    }
    TableReader root(&parsed.root, "", path_, &faults_);
    screen(root.table("screen"));
    record(root.table("record"));
    cameras(root);
    retention(root.table("retention"));
    sound(root.table("sound"));
    board(root.table("board"));
    control(root.table("control"));
    status(root.table("status"));
    log(root.table("log"));
    secrets(root);
    check_privacy(file.is_private);
    root.finish();
    std::ranges::stable_sort(
        faults_, {}, [this](const Fault &fault) { return std::pair(fault.file != path_, fault.line); });
    return {config_, faults_};
}

void Reader::cameras(TableReader &root)
{
    const auto tables = root.tables("camera");
    for (size_t i = 0; i < tables.size(); ++i) {
        TableReader table(tables[i], "camera[" + std::to_string(i + 1) + "]", path_, &faults_);
        Camera camera;
        holds_password_ |= read_camera(table, &camera);
        if (!camera.main.empty() && !has_scheme(camera.main)) camera.main = beside(camera.main);
        for (const Camera &other : config_.cameras) {
            if (!camera.name.empty() && other.name == camera.name)
                table.fault("name", "another camera, in line " + std::to_string(other.line) +
                                        ", is called \"" + camera.name + "\" too");
        }
        if (camera.plan.mode != RecordMode::kNever && table.has("record") && !directory_given_)
            table.fault("record", "it is to be recorded, and nothing says where: set record.directory");
        config_.cameras.push_back(std::move(camera));
    }
    if (tables.empty())
        root.fault("camera", "there is no camera; write [[camera]] with a name and an address");
    if (tables.size() > static_cast<size_t>(kMostChannels))
        root.fault("camera",
                   std::to_string(tables.size()) + " cameras; there may be " + std::to_string(kMostChannels));
}

void Reader::screen(TableReader table)
{
    Screen &screen = config_.screen;
    std::vector<std::string> layouts = layout_names();
    layouts.insert(layouts.begin(), "auto");
    name(table, "layout", layouts, &screen.layout);
    name(table, "output", output_mode_names(), &screen.output);
    table.choice("window", kWanted, &screen.window);
    table.choice("overlay", kWanted, &screen.overlay);
    const char *language = "";
    table.choice("language", kLanguages, &language);
    screen.language = language;
    table.flag("traditional", &screen.traditional);
    path(table, "font", &screen.font);
    if (!screen.font.empty() && !read_file(screen.font).error.starts_with("it is larger") &&
        !read_file(screen.font).error.empty())
        table.fault("font", read_file(screen.font).error);
    path(table, "snapshots", &screen.snapshots);
    table.finish();
}

void Reader::record(TableReader table)
{
    Record &record = config_.record;
    path(table, "directory", &record.directory);
    directory_given_ = table.has("directory");
    table.choice("format", kKinds, &record.format);
    int64_t segment_s = record.segment_s;
    table.whole_seconds("segment", &segment_s, 1, kLongestSegment_s);
    record.segment_s = static_cast<int>(segment_s);
    table.finish();
}

void Reader::retention(TableReader table)
{
    Retention &retention = config_.retention;
    table.bytes("size", &retention.size_bytes);
    table.whole_seconds("age", &retention.age_s, 1, kLongestAge_s);
    table.bytes("free", &retention.free_bytes);
    if (!(retention == Retention{}) && !directory_given_)
        table.fault("", "there is nothing to keep: set record.directory");
    table.finish();
}

void Reader::sound(TableReader table)
{
    Sound &sound = config_.sound;
    std::vector<std::string> names;
    for (const Camera &camera : config_.cameras)
        names.push_back(camera.name);
    name(table, "camera", names, &sound.camera);
    const int heard = config_.channel_of(sound.camera);
    if (heard >= 0 && !config_.cameras[static_cast<size_t>(heard)].sound)
        table.fault("camera", "this camera's own sound is off: nothing of it is heard");
    path(table, "wav", &sound.wav);
    if (!sound.wav.empty() && !table.has("camera"))
        table.fault("wav", "nothing says whose sound: set camera");
    table.finish();
}

void Reader::board(TableReader table)
{
    Board &board = config_.board;
    table.whole("channels", &board.channels, 1, kMostChannels);
    if (board.channels > 0 && config_.cameras.size() > static_cast<size_t>(board.channels))
        table.fault("channels", "there are " + std::to_string(config_.cameras.size()) + " cameras");
    int64_t watchdog_s = board.watchdog_s;
    table.whole_seconds("watchdog", &watchdog_s, 0, kLongestWatchdog_s);
    board.watchdog_s = static_cast<int>(watchdog_s);
    table.seconds("hung_after", &board.hung_after_s, 0.5, kLongestWatchdog_s);
    table.finish();
}

void Reader::control(TableReader table)
{
    std::string given;
    table.text("socket", &given);
    if (!given.empty()) config_.control.socket = given == "none" ? given : beside(given);
    table.finish();
}

void Reader::status(TableReader table)
{
    Status &status = config_.status;
    const Value *page = table.find("page"), *qr = table.find("qr");
    page_line_ = page ? page->line : 0;
    qr_line_ = qr ? qr->line : 0;
    table.text("page", &status.page);
    read_token(table, &status.token);
    table.flag("qr", &status.qr);
    holds_password_ |= !status.token.empty();
    if (!status.page.empty() && !page_address(status.page))
        table.fault("page", R"(it has to be ADDRESS:PORT, such as "127.0.0.1:9310" or "[::1]:9310")");
    const auto place = page_address(status.page);
    if (status.qr && (!place || place->loopback || place->any))
        table.fault("qr",
                    "a QR code leads to a page at one address of this machine beyond loopback: set page");
    table.finish();
}

void Reader::log(TableReader table)
{
    Log &log = config_.log;
    path(table, "file", &log.file);
    table.choice("level", kLevels, &log.level);
    table.bytes("size", &log.size_bytes);
    table.whole("keep", &log.keep, 0, 100);
    table.finish();
}

/* After all that they belong to. */
void Reader::secrets(TableReader &root)
{
    std::string file;
    path(root, "secrets", &file);
    if (!file.empty()) read_secrets(file, &config_, &faults_);
    const Status &status = config_.status;
    const auto place = page_address(status.page);
    if (status.qr && place && page_link(status.page, status.token).size() > kLongestQrText)
        faults_.push_back({path_, qr_line_, "status.qr",
                           "the page's address and its token take more than the " +
                               std::to_string(kLongestQrText) +
                               " bytes of a QR code: a shorter token is needed"});
    if (place && !place->loopback && status.token.empty())
        faults_.push_back({path_, page_line_, "status.page",
                           "it listens beyond loopback, and so needs a token: set status.token, best in the "
                           "secrets file"});
}

void Reader::check_privacy(bool is_private)
{
    if (!holds_password_ || is_private) return;
    faults_.push_back({path_, 0, "",
                       "it holds a password, and others can read it or it is somebody else's: chmod 600, or "
                       "put the password into a file of mode 0600 that the key \"secrets\" names"});
}

} // namespace

Faults missing_files(const Config &config)
{
    Faults faults;
    for (size_t i = 0; i < config.cameras.size(); ++i) {
        const Camera &camera = config.cameras[i];
        std::error_code error;
        if (has_scheme(camera.main) || std::filesystem::exists(camera.main, error)) continue;
        faults.push_back({config.path, camera.main_line, "camera[" + std::to_string(i + 1) + "].main",
                          "there is no file " + camera.main});
    }
    return faults;
}

Reading read_config(const std::string &path)
{
    return Reader(path).read();
}

} // namespace nvrec::config
