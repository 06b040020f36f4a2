/* report.cpp - see report.h. */
#include "scenario/report.h"

#include <cstdio>

#include <tinyxml2.h>

namespace vboard_app::scenario
{
namespace
{

constexpr size_t kLastLines = 5; // of the program's output, below a failure

std::string line_of(const char *verdict, const Report &report)
{
    char text[64];
    std::snprintf(text, sizeof text, "  %.2f s (board: %.2f s)", report.outcome.real_s,
                  static_cast<double>(report.outcome.board_us) / 1e6);
    return std::string(verdict) + "  " + report.name + text + "\n";
}

std::string where(const Report &report, const Failure &failure)
{
    return failure.line > 0 ? report.path + ":" + std::to_string(failure.line) : report.path;
}

std::string details_of(const Report &report)
{
    const Outcome &outcome = report.outcome;
    std::string text;
    for (const Failure &failure : outcome.failures) {
        text += "  " + where(report, failure) + ": " +
                (failure.expected.empty() ? failure.seen : failure.expected) + "\n";
        if (!failure.expected.empty())
            text += "      at " + time_text(failure.at_us) + ": " + failure.seen + "\n";
        if (!failure.picture.empty()) text += "      picture: " + failure.picture + "\n";
    }
    if (outcome.log_file.empty()) return text;
    text += "  the program's output: " + outcome.log_file + "\n";
    const size_t count = outcome.log.size();
    for (size_t i = count - std::min(count, kLastLines); i < count; ++i)
        text += "      " + time_text(outcome.log[i].at_us) + "  " + outcome.log[i].text + "\n";
    return text;
}

/* XML has no way to write most control characters. */
std::string printable(std::string text)
{
    for (char &letter : text)
        if (static_cast<unsigned char>(letter) < 0x20 && letter != '\n' && letter != '\t') letter = '?';
    return text;
}

} // namespace

std::string text_of(const Report &report)
{
    if (!report.not_begun.empty())
        return "FAIL  " + report.name + "\n  " + report.path + ": " + report.not_begun + "\n";
    if (report.outcome.passed()) return line_of("PASS", report);
    return line_of("FAIL", report) + details_of(report);
}

bool write_junit(const std::string &path, const std::vector<Report> &reports)
{
    tinyxml2::XMLDocument document;
    document.InsertEndChild(document.NewDeclaration());
    tinyxml2::XMLElement *suite = document.NewElement("testsuite");
    document.InsertEndChild(suite);
    int failed = 0, errors = 0;
    double time_s = 0;
    for (const Report &report : reports) {
        tinyxml2::XMLElement *one = document.NewElement("testcase");
        one->SetAttribute("classname", printable(report.path).c_str());
        one->SetAttribute("name", printable(report.name).c_str());
        one->SetAttribute("time", report.outcome.real_s);
        suite->InsertEndChild(one);
        time_s += report.outcome.real_s;
        const bool error = !report.not_begun.empty();
        if (!error && report.outcome.passed()) continue;
        ++(error ? errors : failed);
        tinyxml2::XMLElement *what = document.NewElement(error ? "error" : "failure");
        const auto &failures = report.outcome.failures;
        const std::string message = error              ? report.not_begun
                                    : failures.empty() ? "it was interrupted"
                                                       : where(report, failures[0]) + ": " + failures[0].seen;
        what->SetAttribute("message", printable(message).c_str());
        what->SetText(printable(text_of(report)).c_str());
        one->InsertEndChild(what);
    }
    suite->SetAttribute("name", "vboard");
    suite->SetAttribute("tests", static_cast<int>(reports.size()));
    suite->SetAttribute("failures", failed);
    suite->SetAttribute("errors", errors);
    suite->SetAttribute("time", time_s);
    return document.SaveFile(path.c_str()) == tinyxml2::XML_SUCCESS;
}

} // namespace vboard_app::scenario
