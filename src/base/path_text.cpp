#include "base/path_text.h"

#include "base/memory.h"

#include <algorithm>
#include <cstring>

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

// A text being made, apart from the shared buffer, which the arguments may be in.
class Text {
public:
    explicit Text(std::size_t room) : chars_(reinterpret_cast<char*>(fxNewBytes(room).release())) {}

    bool Made() const { return static_cast<bool>(chars_); } // else there is no memory, and it stays empty
    std::string_view View() const { return {chars_.get(), size_}; }
    void Append(std::string_view more) {
        if (!Made() || more.empty())
            return;
        std::memcpy(chars_.get() + size_, more.data(), more.size());
        size_ += more.size();
    }
    void Append(char c) { Append(std::string_view(&c, 1)); }
    void AppendPart(std::string_view part, char separator) {
        if (size_ > 0 && !localIsSeparator(View().back()))
            Append(separator);
        Append(part);
    }
    void Cut(std::size_t size) { size_ = size; }
    const char* Keep() const {
        const std::size_t length = size_ <= kPathLength ? size_ : 0;
        localTmpPath[View().copy(localTmpPath, length)] = '\0';
        return localTmpPath;
    }

private:
    FXOwner<char, FXFree> chars_;
    std::size_t size_ = 0;
};

std::string_view localRemovePathEnding(std::string_view path) {
    return !path.empty() && localIsSeparator(path.back()) ? path.substr(0, path.size() - 1) : path;
}

std::string_view localRemovePathLeading(std::string_view path) {
    return !path.empty() && localIsSeparator(path.front()) ? path.substr(1) : path;
}

// Takes the first part off the path; empty when there is none left.
std::string_view localNextPart(std::string_view* path) {
    path->remove_prefix(std::min(path->find_first_not_of(kSeparators), path->size()));
    const std::string_view part = path->substr(0, path->find_first_of(kSeparators));
    path->remove_prefix(part.size());
    return part;
}

std::size_t localParts(std::string_view path) {
    std::size_t parts = 0;
    while (!localNextPart(&path).empty())
        ++parts;
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

// Appends the path to an empty text, "." and ".." resolved, separators made alike.
void localAppendResolved(Text* text, std::string_view path, char separator) {
    for (const char c : localDrive(path))
        text->Append(localIsSeparator(c) ? separator : c);
    std::string_view rest = path.substr(localDrive(path).size());
    const bool rooted =
        localFromRoot(rest) || (!text->View().empty() && localIsSeparator(text->View().back()));
    if (localFromRoot(rest))
        text->Append(separator);
    const std::size_t root = text->View().size();
    for (std::string_view part = localNextPart(&rest); !part.empty(); part = localNextPart(&rest)) {
        const std::string_view parts = text->View().substr(root);
        const std::string_view last = parts.substr(parts.find_last_of(kSeparators) + 1); // npos + 1 is 0
        const bool up = part == "..";
        if (up && !last.empty() && last != "..")
            text->Cut(root + (parts.size() > last.size() ? parts.size() - last.size() - 1 : 0));
        else if (part != "." && !(up && rooted)) // nothing lies above a root
            text->AppendPart(part, separator);
    }
    if (text->View().size() > root && localIsSeparator(path.back()))
        text->Append(separator);
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
    std::string_view start = from;
    std::string_view goal = to;
    std::size_t up = localParts(start);
    std::size_t common = localParts(goal);
    if (fromIsFile && up > 0)
        --up;
    if (toIsFile && common > 0)
        --common;
    common = std::min(up, common);
    std::size_t same = 0;
    for (std::string_view a = start, b = goal; same < common; ++same, start = a, goal = b)
        if (localNextPart(&a) != localNextPart(&b))
            break;
    if (same == 0 || localFromRoot(from) != localFromRoot(to))
        return to;
    const char separator = std::string_view(to).find('\\') == std::string_view::npos ? '/' : '\\';
    Text way(3 * (up - same) + goal.size() + 1);
    for (; up > same; --up)
        way.AppendPart("..", separator);
    for (std::string_view part = localNextPart(&goal); !part.empty(); part = localNextPart(&goal))
        way.AppendPart(part, separator);
    return way.Made() && way.View().size() <= kPathLength ? way.Keep() : to;
}

const char* fxCombinePaths(const char* a, const char* b) {
    const std::string_view folder = localText(a);
    const std::string_view within = localRemovePathLeading(localText(b));
    const bool separated = folder.find_first_of(kSeparators) != std::string_view::npos;
    const char separator = fxSeparatorOf(separated ? folder : within);
    Text joined(folder.size() + within.size() + 1);
    if (localDrive(within).empty()) {
        if (localFromRoot(within)) {
            joined.Append(localDrive(folder));
        } else {
            joined.Append(localRemovePathEnding(folder));
            if (!folder.empty())
                joined.Append(separator);
        }
    }
    joined.Append(within);
    Text resolved(joined.View().size() + 2);
    localAppendResolved(&resolved, joined.View(), separator);
    return resolved.Keep();
}

const char* fxChangeExt(const char* path, const char* ext) {
    const std::string_view whole = localText(path);
    const std::string_view wanted = localText(ext);
    Text changed(whole.size() + wanted.size() + 1);
    changed.Append(whole.substr(0, localExtension(whole)));
    if (!wanted.empty() && wanted.front() != '.')
        changed.Append('.');
    changed.Append(wanted);
    return changed.Keep();
}

const char* fxAppenfFname(const char* path, const char* suffix) {
    const std::string_view whole = localText(path);
    const std::string_view added = localText(suffix);
    Text named(whole.size() + added.size());
    named.Append(whole.substr(0, localExtension(whole)));
    named.Append(added);
    named.Append(whole.substr(localExtension(whole)));
    return named.Keep();
}
