#include "image/desktop_source.h"
#include "unit/trace_lines.h"
#include "win32/window_system.h"

#include <cstdlib>

namespace {

TEST(DesktopLinux, WithoutAnXServerThereIsNoPictureAndTheTraceSaysWhy) {
    const TempFolder folder;
    const TraceLines trace(folder);
    constexpr const WindowSystem* kSystems[] = {&kX11};
    OfferWindowSystems(kSystems);
    setenv("DISPLAY", ":no-such-display", 1);
    EXPECT_FALSE(fxDesktopCopy(640, 480));
    FXDesktopPixels pixels;
    EXPECT_FALSE(fxDesktopLock(&pixels));
    fxDesktopRelease();
    fxDesktopRelease();
    EXPECT_EQ(trace.Lines(), std::vector<std::string>{"#ERROR: XOpenDisplay (desktop capture)"});
}

} // namespace
