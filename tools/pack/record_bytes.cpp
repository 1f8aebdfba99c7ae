#include "pack/record_bytes.h"

#include "base/file_handle.h"

bool RecordBytes(const std::function<bool(std::FILE*)>& save, std::string* bytes) {
    const FXFile file(std::tmpfile());
    if (!file || !save(file.get()) || std::fflush(file.get()) != 0)
        return false;
    std::rewind(file.get());
    int size = 0;
    const FXBytes read = fxReadRest(file.get(), &size);
    if (read)
        bytes->assign(reinterpret_cast<const char*>(read.get()), static_cast<std::size_t>(size));
    return static_cast<bool>(read);
}
