#include "base/whole_file.h"

#include "base/file_handle.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

// Some systems do not rename over a file: then the old one is kept aside until the new one stands.
bool localRename(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) == 0)
        return true;
    const int reason = errno;
    const std::string aside = to + ".old";
    bool replaced = false;
    if (std::rename(to.c_str(), aside.c_str()) == 0) {
        replaced = std::rename(from.c_str(), to.c_str()) == 0;
        if (replaced)
            std::remove(aside.c_str());
        else
            std::rename(aside.c_str(), to.c_str());
    }
    errno = reason;
    return replaced;
}

void localRemove(const std::string& file) {
    const int reason = errno;
    std::remove(file.c_str());
    errno = reason;
}

} // namespace

bool fxReadWhole(const std::string& file, std::string* bytes, std::string* error) {
    errno = 0;
    const FXFile opened = fxOpenFile(file.c_str(), "rb");
    int size = 0;
    const FXBytes read = opened ? fxReadRest(opened.get(), &size) : nullptr;
    if (read)
        bytes->assign(reinterpret_cast<const char*>(read.get()), static_cast<std::size_t>(size));
    else
        *error = file + ": cannot be read: " + (errno != 0 ? std::strerror(errno) : "it is beyond 2 GiB");
    return static_cast<bool>(read);
}

bool fxMoveInto(const std::string& from, const std::string& to) {
    if (localRename(from, to))
        return true;
    localRemove(from);
    return false;
}

bool fxReplaceFile(const std::string& file, const std::function<bool(std::FILE*)>& write,
                   std::string* error) {
    const std::string unfinished = file + ".new";
    errno = 0;
    FXFile opened = fxOpenFile(unfinished.c_str(), "wb");
    if (opened) {
        const bool filled = write(opened.get());
        const int reason = errno;
        const bool closed = fxCloseWritten(std::move(opened));
        if (filled && closed) {
            if (fxMoveInto(unfinished, file))
                return true;
        } else {
            errno = filled ? errno : reason;
            localRemove(unfinished);
        }
    }
    if (error != nullptr)
        *error = file +
                 ": cannot be written: " + (errno != 0 ? std::strerror(errno) : "there is no memory for it");
    return false;
}
