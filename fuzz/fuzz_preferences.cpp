// Any bytes as XScreenSaver's file of preferences: read, and Tamblor put into its list of savers and taken
// out. What the file says of pictures of the desktop stays what it says.
#include "win32/linux/xscreensaver_file.h"
#include "work_file.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    static const bool prepared = setenv("HOME", WorkFolder().c_str(), 1) == 0;
    const std::string file = WorkFolder() + "/.xscreensaver";
    WriteFile(file, AsText(bytes, size));
    const bool allowed = DesktopImagesAllowed();
    std::string line;

    Expect(prepared && AddToSavers(&line) && DesktopImagesAllowed() == allowed);
    const std::string added = ReadFile(file);
    Expect(added.find("tamblor") != std::string::npos && added.size() >= size);
    Expect(AddToSavers(&line) && line == file + " lists Tamblor already" && ReadFile(file) == added);

    Expect(RemoveFromSavers(&line) && line == file + " lists Tamblor no more");
    const std::string removed = ReadFile(file);
    Expect(DesktopImagesAllowed() == allowed);
    Expect(RemoveFromSavers(&line) && line == file + " does not list Tamblor" && ReadFile(file) == removed);
    return 0;
}
