// Any bytes as the configuration file: it is good, and gives values of the kind that the saver asks for, or
// it is bad, and gives none.
#include "win32/posix/settings_file.h"
#include "win32/product.h"
#include "work_file.h"

#include <charconv>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    static const bool prepared = setenv("HOME", "/home/somebody", 1) == 0;
    WriteFile(WorkFile(), AsText(bytes, size));
    SettingsFile file;
    Expect(prepared && ReadSettingsFile(WorkFile(), &file));
    Expect(file.problem.empty() || (file.values.empty() && file.problem.starts_with(WorkFile())));
    for (const auto& [name, value] : file.values) {
        int number = 0;
        const auto [end, fault] = std::from_chars(value.data(), value.data() + value.size(), number);
        Expect(name == kDataFolderValue ? value.starts_with('/') && value.find('\n') == std::string::npos
                                        : fault == std::errc() && end == value.data() + value.size());
    }
    return 0;
}
