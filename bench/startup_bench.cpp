// From the start of the process to the first presented frame, and where the time goes. Runs on a real display
// (scripts/bench gives it a virtual one of 1920 x 1080); prints one line per step. The linker puts the
// wrappers below around the product's functions, so the show is built by the very code that the saver runs.
#include "host/configuration.h"
#include "image/canvas.h"
#include "package/package.h"
#include "render/gl.h"
#include "scene/show.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double localSecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Seconds since this process was started, loading of its libraries included.
double localSinceProcessStart() {
    std::ifstream stat("/proc/self/stat");
    std::string field;
    for (int i = 0; i < 22; ++i)
        stat >> field; // the 22nd: the start, in ticks since the system's
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const double ticks = static_cast<double>(sysconf(_SC_CLK_TCK));
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9 -
           std::stod(field) / ticks;
}

double localResidentMegabytes() {
    std::ifstream statm("/proc/self/statm");
    double pages = 0;
    statm >> pages >> pages;
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576;
}

struct Step {
    const char* name;
    double seconds = 0;
};
Step codec{"codec loaded"};
Step capture{"desktop captured"};
Step context{"OpenGL context"};
Step package{"package read"};
Step decoding{"pictures decoded"};
Step upload{"textures uploaded"};

class Timed {
public:
    explicit Timed(Step* step) : step_(step), start_(Clock::now()) {}
    ~Timed() { step_->seconds += localSecondsSince(start_); }
    Timed(const Timed&) = delete;
    Timed& operator=(const Timed&) = delete;

private:
    Step* step_;
    Clock::time_point start_;
};

} // namespace

extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
GLint __real_gluBuild2DMipmaps(GLenum, GLint, GLsizei, GLsizei, GLenum, GLenum, const void*);
GLint __wrap_gluBuild2DMipmaps(GLenum target, GLint format, GLsizei w, GLsizei h, GLenum f, GLenum type,
                               const void* data);
bool __real__ZN4FXGL11CreateChildEPv(FXGL*, void*);
bool __wrap__ZN4FXGL11CreateChildEPv(FXGL* gl, void* window);
bool __real__ZN9FXPackage4LoadEPKc(FXPackage*, const char*);
bool __wrap__ZN9FXPackage4LoadEPKc(FXPackage* pck, const char* file);
bool __real__ZN8FXCanvas16CreateFromPictCNEP9FXPackagei(FXCanvas*, FXPackage*, int);
bool __wrap__ZN8FXCanvas16CreateFromPictCNEP9FXPackagei(FXCanvas* canvas, FXPackage* pck, int id);
bool __real__ZN8FXCanvas15CreateFromPictCEP9FXPackagePKc(FXCanvas*, FXPackage*, const char*);
bool __wrap__ZN8FXCanvas15CreateFromPictCEP9FXPackagePKc(FXCanvas* canvas, FXPackage* pck, const char* id);
bool __real__Z13fxDesktopCopyii(int w, int h);
bool __wrap__Z13fxDesktopCopyii(int w, int h);
bool __real__Z11fxLoadDevilv();
bool __wrap__Z11fxLoadDevilv();

bool __wrap__Z13fxDesktopCopyii(int w, int h) {
    const Timed timed(&capture);
    return __real__Z13fxDesktopCopyii(w, h);
}
bool __wrap__Z11fxLoadDevilv() {
    const Timed timed(&codec);
    return __real__Z11fxLoadDevilv();
}
GLint __wrap_gluBuild2DMipmaps(GLenum target, GLint format, GLsizei w, GLsizei h, GLenum f, GLenum type,
                               const void* data) {
    const Timed timed(&upload);
    return __real_gluBuild2DMipmaps(target, format, w, h, f, type, data);
}
bool __wrap__ZN4FXGL11CreateChildEPv(FXGL* gl, void* window) {
    const Timed timed(&context);
    return __real__ZN4FXGL11CreateChildEPv(gl, window);
}
bool __wrap__ZN9FXPackage4LoadEPKc(FXPackage* pck, const char* file) {
    const Timed timed(&package);
    return __real__ZN9FXPackage4LoadEPKc(pck, file);
}
bool __wrap__ZN8FXCanvas16CreateFromPictCNEP9FXPackagei(FXCanvas* canvas, FXPackage* pck, int id) {
    const Timed timed(&decoding);
    return __real__ZN8FXCanvas16CreateFromPictCNEP9FXPackagei(canvas, pck, id);
}
bool __wrap__ZN8FXCanvas15CreateFromPictCEP9FXPackagePKc(FXCanvas* canvas, FXPackage* pck, const char* id) {
    const Timed timed(&decoding);
    return __real__ZN8FXCanvas15CreateFromPictCEP9FXPackagePKc(canvas, pck, id);
}
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

double building = 0;

LRESULT CALLBACK localProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CREATE) {
        const auto start = Clock::now();
        BuildScene(window, false);
        building = localSecondsSince(start);
        return 0;
    }
    if (message == WM_DESTROY) {
        DestroyScene();
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

void localPrint(const char* what, double seconds, double total) {
    std::printf("  %-32s %8.1f ms  %5.1f %%\n", what, seconds * 1000, seconds / total * 100);
}

} // namespace

// The words are the folder of the package; without one, the built show's.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE, char* words, int) {
    const double starting = localSinceProcessStart();
    show::logsFile = "";
    std::snprintf(orinPath, sizeof orinPath, "%s",
                  words != nullptr && *words != '\0' ? words : TAMBLOR_DATA_DIR);
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = localProc;
    windowClass.lpszClassName = "startup";
    RegisterClassA(&windowClass);
    const auto start = Clock::now();
    HWND window = CreateWindowExA(WS_EX_TOPMOST, "startup", "startup", WS_POPUP | WS_VISIBLE, 0, 0,
                                  GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN), nullptr,
                                  nullptr, instance, nullptr);
    if (window == nullptr)
        return 1;
    const double creating = localSecondsSince(start);
    const auto frameStart = Clock::now();
    show::gr.SetAct(true);
    show::sc.OnRender(&show::gr, 1000);
    glFinish();
    const double drawing = localSecondsSince(frameStart);
    show::gr.SetAct(false);

    const double total = starting + creating + drawing;
    double known = 0;
    std::printf("first frame after %.1f ms at %d x %d, %.0f MB resident\n", total * 1000, show::gr.width,
                show::gr.height, localResidentMegabytes());
    localPrint("process and libraries", starting, total);
    localPrint("window", creating - building, total);
    for (const Step& step : {codec, capture, context, package, decoding, upload}) {
        localPrint(step.name, step.seconds, total);
        known += step.seconds;
    }
    localPrint("our own building", building - known, total);
    localPrint("first frame drawn", drawing, total);
    std::fflush(stdout);
    DestroyWindow(window);
    return 0;
}
