/*
 * Simplified and traditional characters beside a plain scan of the same tables and beside OpenCC:
 * with its dictionary of characters alone, and with all its dictionaries. OpenCC's results differ
 * where its dictionaries do, so they are not compared.
 */
#include "contest.h"

#include "nvrhal.h"

#ifdef BENCH_TEXT_OPENCC
#include <opencc.h>
#endif

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>

namespace bench_text
{
namespace
{

constexpr int kPairs = 3754;

std::string by_library(const std::string &text, int (*swap)(const char *, char *))
{
    std::string out(text.size(), '\0');
    swap(text.c_str(), out.data());
    return out;
}

/** Entry after entry of three-byte characters and ASCII, leaving at the first match. */
std::string by_plain_scan(const std::string &text, const char *const *searched,
                          const char *const *replacements)
{
    std::string out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const size_t length = static_cast<uint8_t>(text[at]) < 0x80 ? 1 : 3;
        const char *character = text.data() + at;
        for (int index = 0; length == 3 && searched[index][0] != 'E'; ++index) {
            if (std::memcmp(searched[index], character, 3) != 0) continue;
            character = replacements[index];
            break;
        }
        out.append(character, length);
        at += length;
    }
    return out;
}

#ifdef BENCH_TEXT_OPENCC

/** OpenCC by one of its set-ups, or by one dictionary alone. */
class OpenCc
{
public:
    explicit OpenCc(const std::string &set_up) : converter_(opencc_open(set_up.c_str())) {}
    ~OpenCc() { opencc_close(converter_); }
    OpenCc(const OpenCc &) = delete;
    OpenCc &operator=(const OpenCc &) = delete;

    bool works() const { return converter_ != reinterpret_cast<opencc_t>(-1); }
    std::string convert(const std::string &text) const
    {
        std::string out(2 * text.size() + 16, '\0');
        out.resize(opencc_convert_utf8_to_buffer(converter_, text.data(), text.size(), out.data()));
        return out;
    }

private:
    opencc_t converter_;
};

std::unique_ptr<OpenCc> with_one_dictionary(const std::string &name)
{
    const std::string dictionary = R"({"type": "ocd2", "file": ")" + name + R"("})";
    const std::string set_up = R"({"name": "one", "segmentation": {"type": "mmseg", "dict": )" + dictionary +
                               R"(}, "conversion_chain": [{"dict": )" + dictionary + "}]}";
    char path[] = "/tmp/bench_text_XXXXXX.json";
    const int file = mkstemps(path, 5);
    if (file < 0) return nullptr;
    const bool written = write(file, set_up.data(), set_up.size()) == static_cast<ssize_t>(set_up.size());
    close(file);
    auto converter = written ? std::make_unique<OpenCc>(path) : nullptr;
    unlink(path);
    return converter && converter->works() ? std::move(converter) : nullptr;
}

#endif

struct Direction {
    const char *name;
    int (*swap)(const char *, char *);
    const char *const *searched;
    const char *const *replacements;
    const char *characters_dictionary;
    const char *full_set_up;
};

std::vector<Contestant> contestants_for(const Direction &way, const std::string &text)
{
    std::vector<Contestant> contestants = {
        {"nvrhal", [&] { return by_library(text, way.swap); }, true},
        {"plain scan", [&] { return by_plain_scan(text, way.searched, way.replacements); }, true}};
#ifdef BENCH_TEXT_OPENCC
    const std::shared_ptr<OpenCc> characters = with_one_dictionary(way.characters_dictionary);
    const auto full = std::make_shared<OpenCc>(way.full_set_up);
    if (characters)
        contestants.push_back(
            {"OpenCC, characters alone", [&text, characters] { return characters->convert(text); }, false});
    if (full->works())
        contestants.push_back(
            {"OpenCC, all dictionaries", [&text, full] { return full->convert(text); }, false});
#endif
    return contestants;
}

bool compare_direction(FILE *report, const Direction &way, const std::string &camera_name)
{
    std::vector<std::string> characters(way.searched, way.searched + kPairs);
    std::shuffle(characters.begin(), characters.end(), std::mt19937{kPairs});
    std::string all;
    for (const std::string &character : characters)
        all += character;

    const auto count = [](const std::string &text) {
        return static_cast<size_t>(
            std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
    };
    const std::string title = std::string(way.name) + ", ";
    return compare(report, (title + "all characters").c_str(), count(all), contestants_for(way, all)) &&
           compare(report, (title + "a camera's name").c_str(), count(camera_name),
                   contestants_for(way, camera_name));
}

} // namespace

bool compare_scripts(FILE *report)
{
#ifndef BENCH_TEXT_OPENCC
    std::fprintf(report, "built without OpenCC\n");
#endif
    return compare_direction(report,
                             {"Simplified to traditional", SimplifiedToTraditionalUTF8, JTFontlib, FTFontlib,
                              "STCharacters.ocd2", "s2t.json"},
                             "东门停车场 2 号摄像机") &&
           compare_direction(report,
                             {"Traditional to simplified", TraditionalToSimplifiedUTF8, FTFontlib, JTFontlib,
                              "TSCharacters.ocd2", "t2s.json"},
                             "東門停車場 2 號攝像機");
}

} // namespace bench_text
