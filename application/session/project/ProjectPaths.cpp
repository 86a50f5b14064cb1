#include "session/project/ProjectPaths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {
/** With all links followed; empty if that is impossible. */
fs::path resolved(const fs::path& path)
{
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    const fs::path canonical = error ? fs::path() : fs::weakly_canonical(absolute, error);
    return error ? fs::path() : canonical;
}

bool leadToTheSame(const fs::path& left, const fs::path& right)
{
    const fs::path target = resolved(left);
    return !target.empty() && target == resolved(right);
}

fs::path parentOf(const fs::path& path)
{
    const fs::path parent = path.parent_path();
    return parent.empty() ? "." : parent;
}

fs::path folderOf(const fs::path& document)
{
    std::error_code error;
    const bool isLink = fs::is_symlink(fs::symlink_status(document, error));
    return parentOf(isLink ? resolved(document) : document);
}

fs::path normal(const fs::path& path)
{
    std::error_code error;
    return fs::absolute(path, error).lexically_normal();
}

auto stepsUp(const fs::path& path)
{
    return std::count(path.begin(), path.end(), fs::path(".."));
}
} // namespace

std::string pathInDocument(const std::string& documentPath, const std::string& path)
{
    const fs::path folder = folderOf(documentPath);
    // By the names as given, which survive links that are moved along; by where they lead to, which
    // is right where ".." follows a link. The link of a file itself is a name to keep.
    const fs::path given = normal(path).lexically_relative(normal(folder));
    const fs::path parent = resolved(parentOf(path));
    const fs::path followed =
        (parent / fs::path(path).filename()).lexically_relative(resolved(folder));

    const bool isGivenRight = !given.empty() && leadToTheSame(folder / given, path);
    const bool isFollowedRight = !followed.empty() && leadToTheSame(folder / followed, path);
    if (isGivenRight && !(isFollowedRight && stepsUp(followed) < stepsUp(given))) {
        return given.string();
    }
    return isFollowedRight ? followed.string() : normal(path).string();
}

std::string pathFromDocument(const std::string& documentPath, const std::string& path)
{
    const fs::path joined = folderOf(documentPath) / path;
    const fs::path shorter = joined.lexically_normal();
    const std::string usable = (leadToTheSame(shorter, joined) ? shorter : joined).string();
    // A lone dash would be taken for the standard input.
    return usable == "-" ? "./-" : usable;
}
