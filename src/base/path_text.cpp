#include "base/path_text.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr std::string_view kSeparators = "\\/";
constexpr std::size_t kPathLength = 259;

char localTmpPath[288] = "";

bool localIsSeparator(char c) {
    return kSeparators.find(c) != std::string_view::npos;
}

std::string_view localText(const char* path) {
    return path ? path : "";
}

// `made` may come from what the buffer holds.
const char* localKeep(const std::string& made) {
    const std::size_t length = made.size() <= kPathLength ? made.size() : 0;
    localTmpPath[made.copy(localTmpPath, length)] = '\0';
    return localTmpPath;
}

std::string_view localRemovePathEnding(std::string_view path) {
    return !path.empty() && localIsSeparator(path.back()) ? path.substr(0, path.size() - 1) : path;
}

std::string_view localRemovePathLeading(std::string_view path) {
    return !path.empty() && localIsSeparator(path.front()) ? path.substr(1) : path;
}

std::vector<std::string_view> localSplit(std::string_view path) {
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        const std::size_t end = path.find_first_of(kSeparators);
        if (end != 0)
            parts.push_back(path.substr(0, end));
        if (end == std::string_view::npos)
            break;
        path.remove_prefix(end + 1);
    }
    return parts;
}

bool localFromRoot(std::string_view path) {
    return !path.empty() && localIsSeparator(path.front());
}

// "C:", the two separators before a server's name, or nothing.
std::string_view localDrive(std::string_view path) {
    const bool named = path.size() >= 2 && path[1] == ':';
    const bool server = path.size() >= 2 && path[0] == '\\' && path[1] == '\\';
    return path.substr(0, named || server ? 2 : 0);
}

void localAppendPart(std::string* path, std::string_view part, char separator) {
    if (!path->empty() && !localIsSeparator(path->back()))
        path->push_back(separator);
    path->append(part);
}

// "." and ".." resolved, separators made alike.
std::string localResolved(std::string_view path, char separator) {
    std::string resolved(localDrive(path));
    std::ranges::replace_if(resolved, localIsSeparator, separator);
    const std::string_view rest = path.substr(resolved.size());
    const bool rooted = localFromRoot(rest) || (!resolved.empty() && localIsSeparator(resolved.back()));
    if (localFromRoot(rest))
        resolved.push_back(separator);
    std::vector<std::string_view> kept;
    for (const std::string_view part : localSplit(rest)) {
        const bool up = part == "..";
        if (up && !kept.empty() && kept.back() != "..")
            kept.pop_back();
        else if (part != "." && !(up && rooted)) // nothing lies above a root
            kept.push_back(part);
    }
    for (const std::string_view part : kept)
        localAppendPart(&resolved, part, separator);
    if (!kept.empty() && localIsSeparator(path.back()))
        resolved.push_back(separator);
    return resolved;
}

// Where the extension of the path begins, or would.
std::size_t localExtension(std::string_view path) {
    const std::size_t name = path.find_last_of(kSeparators) + 1; // npos + 1 is 0
    const std::size_t visible = path.find_first_not_of('.', name);
    const std::size_t dot = path.rfind('.');
    return dot != std::string_view::npos && dot > visible ? dot : path.size();
}

} // namespace

char fxSeparatorOf(std::string_view path) {
    return path.find('/') != std::string_view::npos && path.find('\\') == std::string_view::npos ? '/' : '\\';
}

const char* fxGetFilename(const char* path) {
    if (path == nullptr)
        return "";
    return path + (std::string_view(path).find_last_of(kSeparators) + 1); // npos + 1 is 0
}

const char* fxBuildRelativePath(const char* from, bool fromIsFile, const char* to, bool toIsFile) {
    from = from ? from : "";
    to = to ? to : "";
    std::vector<std::string_view> start = localSplit(from);
    const std::vector<std::string_view> goal = localSplit(to);
    if (fromIsFile && !start.empty())
        start.pop_back();
    const std::size_t limit = goal.size() - (toIsFile && !goal.empty() ? 1 : 0);
    std::size_t common = 0;
    while (common < start.size() && common < limit && start[common] == goal[common])
        ++common;
    if (common == 0 || localFromRoot(from) != localFromRoot(to))
        return to;
    const char separator = std::string_view(to).find('\\') == std::string_view::npos ? '/' : '\\';
    std::string result;
    for (std::size_t i = common; i < start.size(); ++i)
        localAppendPart(&result, "..", separator);
    for (std::size_t i = common; i < goal.size(); ++i)
        localAppendPart(&result, goal[i], separator);
    return result.size() <= kPathLength ? localKeep(result) : to;
}

const char* fxCombinePaths(const char* a, const char* b) {
    const std::string_view folder = localText(a);
    const std::string_view within = localRemovePathLeading(localText(b));
    const bool separated = folder.find_first_of(kSeparators) != std::string_view::npos;
    const char separator = fxSeparatorOf(separated ? folder : within);
    std::string joined;
    if (!localDrive(within).empty()) {
        joined = within;
    } else if (localFromRoot(within)) {
        joined = std::string(localDrive(folder)).append(within);
    } else {
        joined = localRemovePathEnding(folder);
        if (!folder.empty())
            joined.push_back(separator);
        joined.append(within);
    }
    return localKeep(localResolved(joined, separator));
}

const char* fxChangeExt(const char* path, const char* ext) {
    const std::string_view whole = localText(path);
    const std::string_view wanted = localText(ext);
    std::string changed(whole.substr(0, localExtension(whole)));
    if (!wanted.empty() && wanted.front() != '.')
        changed.push_back('.');
    return localKeep(changed.append(wanted));
}

const char* fxAppenfFname(const char* path, const char* suffix) {
    std::string whole(localText(path));
    return localKeep(whole.insert(localExtension(whole), localText(suffix)));
}
