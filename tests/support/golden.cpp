/* Golden files: compare, create, rewrite. */
#include "golden.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace recording
{

namespace
{

bool write_file(const std::filesystem::path &path, const std::string &text)
{
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    return out.good();
}

std::string first_difference(const std::string &expected, const std::string &actual)
{
    std::istringstream left(expected), right(actual);
    for (unsigned line = 1;; ++line) {
        std::string a, b;
        bool more_left = static_cast<bool>(std::getline(left, a));
        bool more_right = static_cast<bool>(std::getline(right, b));
        if (!more_left && !more_right) return "no line differs";
        if (more_left == more_right && a == b) continue;
        return "line " + std::to_string(line) + "\n  golden: " + (more_left ? a : "(end)") +
               "\n  actual: " + (more_right ? b : "(end)");
    }
}

} // namespace

Finding matches_golden(const std::string &name, const std::string &text)
{
    std::filesystem::path golden = std::filesystem::path(NVRHAL_GOLDEN_DIR) / (name + ".txt");
    std::filesystem::path actual = std::filesystem::path(NVRHAL_GOLDEN_DIR) / (name + ".actual");
    std::string seen = text + "\n";

    const char *rewrite = std::getenv("NVRHAL_REWRITE_GOLDEN");
    if (rewrite != nullptr && std::string(rewrite) == "1") {
        if (write_file(golden, seen)) return {true, ""};
        return {false, "cannot write " + golden.string()};
    }

    std::ifstream in(golden, std::ios::binary);
    if (!in) {
        bool written = write_file(golden, seen);
        return {false, golden.string() + " was missing and is now " +
                           (written ? "written: look at it" : "impossible to write")};
    }
    std::stringstream kept;
    kept << in.rdbuf();
    if (kept.str() == seen) return {true, ""};
    write_file(actual, seen);
    return {false,
            golden.string() + " differs, see " + actual.string() + "\n" + first_difference(kept.str(), seen)};
}

} // namespace recording
