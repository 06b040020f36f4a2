/* summary.cpp - see summary.h. */
#include "record/summary.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "wall/report.h"

namespace nvrec
{
namespace
{

struct Column {
    const char *name;
    uint64_t (*value)(const RecordingReport &);
};

constexpr Column kColumns[] = {
    {"stored", [](const RecordingReport &row) { return row.frames.stored; }},
    {"refused", [](const RecordingReport &row) { return row.frames.refused; }},
    {"read", [](const RecordingReport &row) { return row.frames.read; }},
    {"lost", [](const RecordingReport &row) { return row.frames.lost; }},
    {"resynchronised", [](const RecordingReport &row) { return row.frames.resynchronised; }},
    {"written", [](const RecordingReport &row) { return row.written; }},
    {"skipped", [](const RecordingReport &row) { return row.skipped; }},
    {"bytes", [](const RecordingReport &row) { return row.bytes; }},
};

constexpr int kColumnWidth = 9;

std::string right_aligned(const std::string &text, size_t width)
{
    return (text.size() < width ? std::string(width - text.size(), ' ') : "") + text;
}

/* A blank at least stands between two columns. */
size_t width_of(const Column &column, const std::vector<RecordingReport> &recordings)
{
    size_t width = std::max<size_t>(kColumnWidth, std::string_view(column.name).size() + 1);
    for (const RecordingReport &row : recordings)
        width = std::max(width, std::to_string(column.value(row)).size() + 1);
    return width;
}

} // namespace

std::vector<std::string> table_of(const std::vector<RecordingReport> &recordings)
{
    std::string head = " ch  stream ";
    for (const Column &column : kColumns)
        head += right_aligned(column.name, width_of(column, recordings));
    std::vector<std::string> lines = {head + "  files"};
    for (const RecordingReport &row : recordings) {
        char first[32];
        std::snprintf(first, sizeof first, "%3d  %-7s", row.channel, row.stream.c_str());
        std::string line = first;
        for (const Column &column : kColumns)
            line += right_aligned(std::to_string(column.value(row)), width_of(column, recordings));
        line += right_aligned(std::to_string(row.files.size()), 7);
        lines.push_back(line + (row.trouble.empty() ? "" : "  (" + row.trouble + ")"));
    }
    return lines;
}

std::string json_of(const std::vector<RecordingReport> &recordings)
{
    std::string json = "\"recordings\": [";
    const char *separator = "\n";
    for (const RecordingReport &row : recordings) {
        json += separator;
        separator = ",\n";
        json +=
            "    {\"channel\": " + std::to_string(row.channel) + ", \"stream\": " + json_string(row.stream);
        for (const Column &column : kColumns)
            json += std::string(", \"") + column.name + "\": " + std::to_string(column.value(row));
        json += ", \"files\": [";
        for (const std::string &file : row.files)
            json += (&file == &row.files.front() ? "" : ", ") + json_string(file);
        json += "], \"trouble\": " + json_string(row.trouble) + "}";
    }
    return json + "\n  ]";
}

} // namespace nvrec
