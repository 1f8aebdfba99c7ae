#include "base/path_text.h"

#include "base/str.h"

#include <string_view>
#include <vector>

namespace {

constexpr std::string_view kSeparators = "\\/";

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
    return !path.empty() && kSeparators.find(path.front()) != std::string_view::npos;
}

void localAppendPart(FXStr* path, std::string_view part, char separator) {
    if (!path->IsEmpty())
        path->AppendChar(separator);
    for (const char c : part)
        path->AppendChar(c);
}

} // namespace

const char* fxGetFilename(const char* path) {
    const std::size_t at = std::string_view(path).find_last_of(kSeparators);
    return at == std::string_view::npos ? path : path + at + 1;
}

const char* fxBuildRelativePath(const char* from, bool fromIsFile, const char* to, bool toIsFile) {
    static FXStr result;
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
    result.Clear();
    for (std::size_t i = common; i < start.size(); ++i)
        localAppendPart(&result, "..", separator);
    for (std::size_t i = common; i < goal.size(); ++i)
        localAppendPart(&result, goal[i], separator);
    return result.text;
}
