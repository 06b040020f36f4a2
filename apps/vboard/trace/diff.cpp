/*
 * diff.cpp - two call traces compared.
 *
 * A difference is shown as diff(1) would: some lines before it, "-" for what only the first trace has, "+"
 * for what only the second one has, each with its line number; when both have the same call at that place,
 * the fields in which they differ.
 */
#include "trace/diff.h"

#include <algorithm>
#include <cinttypes>
#include <set>

#include "trace/call_fields.h"
#include "trace/differences.h"

namespace vboard_app
{
namespace
{

constexpr size_t kMostLines = 20; // of one side of a difference

struct Compared {
    std::string channel; // "" for the whole
    const LineSequence *a = nullptr, *b = nullptr;
    std::vector<Difference> differences;

    // Line of the first trace at which they part, for the order of the channels.
    uint32_t parts_at() const
    {
        const size_t at = differences.front().a_from;
        if (at < a->lines.size()) return a->lines[at];
        return a->lines.empty() ? 0 : a->lines.back() + 1;
    }
};

std::string counted(size_t count, const char *noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

class Report
{
public:
    Report(const TraceFile &a, const TraceFile &b, const DiffOptions &options, FILE *output)
        : a_(a), b_(b), options_(options), output_(output)
    {
    }
    void show(const Compared &compared);

private:
    void show_difference(const Compared &compared, const Difference &one);
    void show_lines(char sign, const TraceFile &file, const LineSequence &sequence, size_t from, size_t to);
    void show_fields(const std::string &left, const std::string &right);
    void show_field(const std::string &name, std::string_view left, std::string_view right);

    const TraceFile &a_, &b_;
    const DiffOptions &options_;
    FILE *output_;
};

// "a.txt:17", or the end of it.
std::string place(const TraceFile &file, const LineSequence &sequence, size_t at)
{
    if (at < sequence.lines.size()) return file.path() + ":" + std::to_string(sequence.lines[at]);
    return "the end of " + file.path();
}

void Report::show_lines(char sign, const TraceFile &file, const LineSequence &sequence, size_t from,
                        size_t to)
{
    const size_t shown = std::min(to, from + kMostLines);
    for (size_t at = from; at < shown; ++at)
        fprintf(output_, "%c %8" PRIu32 "  %s\n", sign, sequence.lines[at],
                file.text(sequence.lines[at]).c_str());
    if (shown < to) fprintf(output_, "%c           ... and %zu more\n", sign, to - shown);
}

void Report::show_field(const std::string &name, std::string_view left, std::string_view right)
{
    fprintf(output_, "  differs: %s, %.*s and %.*s\n", name.c_str(), static_cast<int>(left.size()),
            left.data(), static_cast<int>(right.size()), right.data());
}

void Report::show_fields(const std::string &left, const std::string &right)
{
    CallLine one, other;
    if (!parse_call(left, one).empty() || !parse_call(right, other).empty()) return;
    if (one.name != other.name || one.event != other.event || one.arguments.size() != other.arguments.size())
        return;
    for (size_t at = 0; at < one.arguments.size(); ++at) {
        const CallField &mine = one.arguments[at], &theirs = other.arguments[at];
        const std::string name(mine.name);
        if (!options_.same.counts(mine.name) || mine.text == theirs.text) continue;
        const auto members = one.members(mine), others = other.members(theirs);
        if (members.size() != others.size() || members.empty()) {
            show_field(name, mine.text, theirs.text);
            continue;
        }
        for (size_t member = 0; member < members.size(); ++member)
            if (members[member].text != others[member].text &&
                options_.same.counts(members[member].name, mine.name))
                show_field(name + "." + std::string(members[member].name), members[member].text,
                           others[member].text);
    }
    const auto told = [](const CallLine &call) {
        const std::string meaning = result_meaning(call.result);
        return std::string(call.result) + (meaning.empty() ? "" : " (" + meaning + ")");
    };
    if (one.result != other.result) show_field("result", told(one), told(other));
}

void Report::show_difference(const Compared &compared, const Difference &one)
{
    const LineSequence &a = *compared.a, &b = *compared.b;
    const size_t before = std::min<size_t>({options_.context, one.a_from, one.b_from});
    fprintf(output_, "%s%sparts at %s and %s\n", compared.channel.c_str(),
            compared.channel.empty() ? "" : " ", place(a_, a, one.a_from).c_str(),
            place(b_, b, one.b_from).c_str());
    show_lines(' ', a_, a, one.a_from - before, one.a_from);
    show_lines('-', a_, a, one.a_from, one.a_to);
    show_lines('+', b_, b, one.b_from, one.b_to);
    if (one.a_from < one.a_to && one.b_from < one.b_to)
        show_fields(a_.text(a.lines[one.a_from]), b_.text(b.lines[one.b_from]));
}

void Report::show(const Compared &compared)
{
    const std::vector<Difference> &found = compared.differences;
    for (size_t at = 0; at < (options_.all ? found.size() : 1); ++at)
        show_difference(compared, found[at]);
    size_t only_a = 0, only_b = 0;
    for (const Difference &one : found) {
        only_a += one.a_to - one.a_from;
        only_b += one.b_to - one.b_from;
    }
    fprintf(output_, "%s%s%s; only in %s: %s, only in %s: %s\n", compared.channel.c_str(),
            compared.channel.empty() ? "" : ": ", counted(found.size(), "difference").c_str(),
            a_.path().c_str(), counted(only_a, "line").c_str(), b_.path().c_str(),
            counted(only_b, "line").c_str());
}

const LineSequence &sequence_of(const TraceFile &file, const std::string &channel)
{
    static const LineSequence none;
    const auto found = file.sequences().find(channel);
    return found != file.sequences().end() ? found->second : none;
}

} // namespace

bool diff_traces(const std::string &a, const std::string &b, const DiffOptions &options, FILE *output,
                 std::vector<std::string> &complaints)
{
    const TraceFile left(a, options.same, options.by_channel), right(b, options.same, options.by_channel);
    for (const TraceFile *file : {&left, &right})
        complaints.insert(complaints.end(), file->complaints().begin(), file->complaints().end());
    std::set<std::string> channels;
    for (const TraceFile *file : {&left, &right})
        for (const auto &[channel, sequence] : file->sequences())
            channels.insert(channel);
    std::vector<Compared> parted;
    for (const std::string &channel : channels) {
        const LineSequence &one = sequence_of(left, channel), &other = sequence_of(right, channel);
        std::vector<Difference> found = differences(one.marks, other.marks);
        if (!found.empty()) parted.push_back({channel, &one, &other, std::move(found)});
    }
    if (parted.empty() || options.quiet) return parted.empty();
    std::stable_sort(parted.begin(), parted.end(),
                     [](const Compared &x, const Compared &y) { return x.parts_at() < y.parts_at(); });
    Report report(left, right, options, output);
    for (const Compared &compared : parted)
        report.show(compared);
    if (options.by_channel)
        fprintf(output, "%zu of %s differ\n", parted.size(), counted(channels.size(), "channel").c_str());
    return false;
}

} // namespace vboard_app
