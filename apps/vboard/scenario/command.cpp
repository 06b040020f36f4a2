/*
 * command.cpp - see command.h. Exit status: 0 every scenario holds, 1 one does not, 2 the command line or a
 * file is wrong and nothing was run, 125 a board could not be had.
 */
#include "scenario/command.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include <CLI/CLI.hpp>

#include "scenario/board_session.h"
#include "scenario/player.h"
#include "scenario/report.h"

namespace vboard_app
{
namespace scenario
{
namespace
{

constexpr int kUsage = 2;
constexpr int kNoBoard = 125;

std::atomic<bool> interrupted{false};

void interrupt(int)
{
    interrupted = true;
}

struct Options {
    std::vector<std::string> files;
    std::vector<std::string> program;
    std::vector<std::string> defines;
    std::string only, output = "vboard-test", junit;
    int repeat = 1;
    int limit_s = 300;
    bool stepped = false, realtime = false, list = false, check = false;
};

/* What stands before "--", and the program behind it. */
void split(int argc, char **argv, std::vector<std::string> &own, std::vector<std::string> &program)
{
    bool behind = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (!behind && argument == "--")
            behind = true;
        else
            (behind ? program : own).push_back(argument);
    }
}

void describe(CLI::App &app, Options &options)
{
    app.add_option("scenarios", options.files, "Scenario files, or folders of them (*.yaml)")->required();
    app.add_option("-D,--define", options.defines, "NAME=VALUE: what ${NAME} stands for; may be repeated")
        ->take_all()
        ->allow_extra_args(false);
    app.add_option("-o,--output", options.output, "Folder for pictures and logs of what failed")
        ->capture_default_str();
    app.add_option("--junit", options.junit, "Write the results as JUnit XML to this file");
    app.add_option("--repeat", options.repeat, "Play each so many times")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    app.add_option("--only", options.only, "Play those whose name contains this text");
    app.add_option("--limit", options.limit_s, "Seconds of real time that one may last")
        ->check(CLI::Range(1, 86400))
        ->capture_default_str();
    app.add_flag("--list", options.list, "Print the scenarios' names, and play nothing");
    app.add_flag("--check", options.check, "Only read the files");
    auto *realtime =
        app.add_flag("--realtime", options.realtime, "Let the board's clock run, whatever the files say");
    app.add_flag("--stepped", options.stepped, "Step the board's clock, whatever the files say")
        ->excludes(realtime);
    app.footer(
        "Everything behind \"--\" is the program with its arguments. Exit status: 0 all hold, 1 one does\n"
        "not, 2 the command line or a file is wrong, 125 the board could not be started.");
}

bool read_defines(const Options &options, ReadOrders &orders)
{
    for (const std::string &define : options.defines) {
        const size_t equals = define.find('=');
        if (equals == std::string::npos || equals == 0) {
            std::fprintf(stderr, "vboard test: --define wants NAME=VALUE, not \"%s\"\n", define.c_str());
            return false;
        }
        orders.defines[define.substr(0, equals)] = define.substr(equals + 1);
    }
    if (options.stepped || options.realtime) orders.stepped = options.stepped;
    return true;
}

/* Folders become the scenarios in them, in the order of their names. */
std::vector<std::string> files_of(const std::vector<std::string> &given)
{
    std::vector<std::string> files;
    for (const std::string &one : given) {
        std::error_code error;
        if (!std::filesystem::is_directory(one, error)) {
            files.push_back(one);
            continue;
        }
        std::vector<std::string> inside;
        for (const auto &entry : std::filesystem::directory_iterator(one, error))
            if (entry.path().extension() == ".yaml") inside.push_back(entry.path().string());
        std::sort(inside.begin(), inside.end());
        files.insert(files.end(), inside.begin(), inside.end());
    }
    return files;
}

void tell(const std::string &path, const Problems &problems)
{
    for (const Problem &problem : problems.sorted()) {
        const std::string where = problem.line > 0 ? path + ":" + std::to_string(problem.line) : path;
        std::fprintf(stderr, "%s: %s\n", where.c_str(), problem.text.c_str());
    }
}

struct Chosen {
    std::string path, name;
};

/* Every mistake of every file is told; nothing when there is one. */
std::optional<std::vector<Chosen>> read_all(const Options &options, const ReadOrders &orders)
{
    std::vector<Chosen> chosen;
    bool whole = true;
    for (const std::string &path : files_of(options.files)) {
        Problems problems;
        const auto scenario = read_scenario(path, orders, problems);
        tell(path, problems);
        whole &= scenario.has_value();
        if (scenario && scenario->name.find(options.only) != std::string::npos)
            chosen.push_back({path, scenario->name});
    }
    if (!whole) return {};
    return chosen;
}

std::string folder_for(const Options &options, const std::string &name)
{
    std::string plain = name;
    for (char &letter : plain)
        if (letter == '/' || static_cast<unsigned char>(letter) < 0x20) letter = '_';
    return (std::filesystem::path(options.output) / plain).string();
}

Report play_one(const Chosen &one, int number, const Options &options, const ReadOrders &orders,
                const Launcher &launcher)
{
    Report report;
    report.path = one.path;
    report.name = one.name;
    if (options.repeat > 1)
        report.name += " [" + std::to_string(number) + " of " + std::to_string(options.repeat) + "]";
    Problems problems;
    auto scenario = read_scenario(one.path, orders, problems); // anew: checks keep what they have seen
    if (!scenario) {
        tell(one.path, problems);
        report.not_begun = "the file has changed meanwhile";
        return report;
    }
    PlayOrders play_orders;
    play_orders.output_folder =
        folder_for(options, options.repeat > 1 ? one.name + "-" + std::to_string(number) : one.name);
    play_orders.limit = std::chrono::seconds(options.limit_s);
    play_orders.interrupted = &interrupted;
    try {
        report.outcome = play(*scenario, launcher, play_orders);
    } catch (const LaunchError &error) {
        report.not_begun = error.what();
    }
    return report;
}

/* Ctrl-C ends the scenario that is played; a second one ends at once. */
class InterruptGuard
{
public:
    InterruptGuard()
    {
        interrupted = false;
        struct sigaction action = {};
        action.sa_handler = interrupt;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(SIGINT, &action, &int_before_);
        sigaction(SIGTERM, &action, &term_before_);
    }
    ~InterruptGuard()
    {
        sigaction(SIGINT, &int_before_, nullptr);
        sigaction(SIGTERM, &term_before_, nullptr);
    }
    InterruptGuard(const InterruptGuard &) = delete;
    InterruptGuard &operator=(const InterruptGuard &) = delete;

private:
    struct sigaction int_before_ = {}, term_before_ = {};
};

int play_all(const std::vector<Chosen> &chosen, const Options &options, const ReadOrders &orders,
             const Launcher &launcher)
{
    const InterruptGuard guard;
    std::vector<Report> reports;
    size_t failed = 0, not_begun = 0;
    for (const Chosen &one : chosen) {
        for (int number = 1; number <= options.repeat && !interrupted; ++number) {
            reports.push_back(play_one(one, number, options, orders, launcher));
            const Report &report = reports.back();
            not_begun += report.not_begun.empty() ? 0 : 1;
            failed += report.not_begun.empty() && !report.outcome.passed() ? 1 : 0;
            std::fputs(text_of(report).c_str(), stdout);
            std::fflush(stdout);
        }
    }
    std::printf("%zu passed, %zu failed\n", reports.size() - failed - not_begun, failed + not_begun);
    std::fflush(stdout);
    if (!options.junit.empty() && !write_junit(options.junit, reports)) {
        std::fprintf(stderr, "vboard test: cannot write %s\n", options.junit.c_str());
        return kNoBoard;
    }
    if (interrupted) return 128 + SIGINT;
    if (not_begun > 0) return kNoBoard;
    return failed > 0 ? 1 : 0;
}

} // namespace

int run_tests(int argc, char **argv, const LauncherFor &launcher_for)
{
    std::vector<std::string> own;
    Options options;
    split(argc, argv, own, options.program);
    CLI::App app("Play scenarios on a fresh board each, and tell which of them hold", "vboard test");
    describe(app, options);
    std::reverse(own.begin(), own.end()); // as the parser takes them
    try {
        app.parse(own);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : kUsage;
    }
    ReadOrders orders;
    if (!read_defines(options, orders)) return kUsage;
    const auto chosen = read_all(options, orders);
    if (!chosen) return kUsage;
    if (options.list)
        for (const Chosen &one : *chosen)
            std::printf("%s  %s\n", one.name.c_str(), one.path.c_str());
    if (options.list || options.check) return 0;
    if (chosen->empty()) {
        std::fprintf(stderr, "vboard test: there is no scenario to play\n");
        return kUsage;
    }
    if (options.program.empty()) {
        std::fprintf(stderr, "vboard test: no program is given; it stands behind \"--\"\n");
        return kUsage;
    }
    return play_all(*chosen, options, orders, launcher_for(options.program));
}

} // namespace scenario

int test_command(int argc, char **argv)
{
    return scenario::run_tests(argc, argv, scenario::board_launcher);
}

} // namespace vboard_app
