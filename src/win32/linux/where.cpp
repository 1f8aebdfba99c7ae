#include "win32/linux/where.h"

#include "win32/posix/data_folder.h"
#include "win32/posix/program_file.h"
#include "win32/product.h"

#include <GL/gl.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr char kProblem[] = "PROBLEM: ";

// Subjects with lines below each other.
class Lines {
public:
    explicit Lines(WhereReport* report) : report_(report) {}
    void Put(const char* subject, const std::string& words) {
        constexpr std::size_t kColumn = 16;
        std::string start = subject;
        start.resize(kColumn, ' ');
        report_->text += start + words + "\n";
    }
    // What the show would lack, or passes over.
    void PutProblem(const char* subject, const std::string& words) {
        report_->whole = false;
        Put(subject, kProblem + words);
    }

private:
    WhereReport* report_;
};

std::string WordsOf(DWORD error) {
    char words[1024] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, words,
                   sizeof words, nullptr);
    return words;
}

// Of the environment: the word that a user would look at.
std::string SettingOf(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr ? std::string(variable) + "=" + value : std::string(variable) + " is not set";
}

std::string Pixels(int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

std::string Megabytes(std::uintmax_t bytes) {
    constexpr std::uintmax_t kTenth = 100000;
    const std::uintmax_t tenths = (bytes + kTenth / 2) / kTenth;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " MB";
}

void PutPackage(Lines* lines, const std::vector<DataPlace>& places, int screenWidth) {
    const DataPlace* chosen = ChosenDataPlace(places);
    if (chosen == nullptr) {
        lines->PutProblem("package", "no data folder is named, and none is installed:");
        for (const DataPlace& place : places)
            if (place.kind == DataPlace::Installed)
                lines->Put("", place.name + " is not there");
        return;
    }
    const std::string package = fs::path(chosen->folder) / kPackageFile;
    std::error_code failed;
    const std::uintmax_t size = fs::file_size(package, failed);
    if (failed)
        lines->PutProblem("package", package + ": " + failed.message());
    else if (access(package.c_str(), R_OK) != 0)
        lines->PutProblem("package", package + ": " + std::strerror(errno));
    else
        lines->Put("package", package + " (" + Megabytes(size) + ")");
    if (chosen->kind != DataPlace::Installed) {
        lines->Put("", "named by " + chosen->name);
        return;
    }
    lines->Put("", "installed with the program, and nothing names another");
    if (screenWidth > kWidestForDefaultShow && fs::path(chosen->folder).filename() != kLargeShowFolder)
        lines->Put("", "the one for such a wide screen is not installed (Debian package tamblor-4k)");
}

void PutConfiguration(Lines* lines, const std::vector<DataPlace>& places) {
    const char* subject = "configuration";
    for (const DataPlace& place : places) {
        if (place.kind != DataPlace::Settings)
            continue;
        if (!place.problem.empty())
            lines->PutProblem(subject, place.problem + " (the file is passed over)");
        else
            lines->Put(subject, place.name + (place.there ? " (read)" : " (not there)"));
        subject = "";
    }
}

// As the show does (scene/scene.cpp): in the data folder, or else for this user.
void PutLog(Lines* lines, const DataPlace* chosen) {
    const std::string folder = chosen != nullptr ? chosen->folder : "";
    const std::string beside = fs::path(folder) / kLogFile;
    const bool writable = !folder.empty() && access(folder.c_str(), X_OK) == 0 &&
                          access((fs::exists(beside) ? beside : folder).c_str(), W_OK) == 0 &&
                          !fs::is_directory(beside);
    char state[MAX_PATH] = "";
    if (writable)
        lines->Put("log", beside);
    else if (SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, state) == 0)
        lines->Put("log", std::string(state) + "/" + kProductFolder + "/" + kLogFile);
    else
        lines->PutProblem("log", "HOME and XDG_STATE_HOME name no folder for it");
    if (!writable && !folder.empty())
        lines->Put("", "for this user, since " + beside + " cannot be written");
}

// A window that is never shown, with OpenGL as the show has it. Gives the words for a failure, or "".
std::string AskOpenGl(const Place& screen, std::string* renderer, std::string* extensions) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = [](HWND, UINT, WPARAM, LPARAM) -> LRESULT { return 0; };
    windowClass.lpszClassName = "where";
    RegisterClassA(&windowClass);
    const HWND window = CreateWindowExA(0, windowClass.lpszClassName, "tamblor", WS_POPUP, 0, 0, screen.width,
                                        screen.height, nullptr, nullptr, nullptr, nullptr);
    PIXELFORMATDESCRIPTOR wanted = {};
    wanted.cColorBits = 24;
    wanted.cDepthBits = 16;
    const HDC dc = GetDC(window);
    const int format = ChoosePixelFormat(dc, &wanted);
    const HGLRC context = SetPixelFormat(dc, format, &wanted) ? wglCreateContext(dc) : nullptr;
    std::string problem;
    if (wglMakeCurrent(dc, context) && context != nullptr) {
        const auto say = [](GLenum what) {
            const auto* words = reinterpret_cast<const char*>(glGetString(what));
            return std::string(words != nullptr ? words : "unknown");
        };
        *renderer = say(GL_RENDERER) + ", OpenGL " + say(GL_VERSION);
        *extensions = say(GL_EXTENSIONS);
        wglMakeCurrent(nullptr, nullptr);
    } else {
        problem = WordsOf(GetLastError());
    }
    wglDeleteContext(context);
    ReleaseDC(window, dc);
    DestroyWindow(window);
    return problem;
}

void PutScreen(Lines* lines, std::span<const WindowSystem* const> systems) {
    const WindowSystem& used = UsedWindowSystem();
    const Place screen = used.FindScreen();
    if (screen.width <= 0) {
        std::string tried;
        for (const WindowSystem* system : systems)
            tried += (tried.empty() ? "" : ", ") + std::string(system->name);
        lines->PutProblem("window system", "none can be reached (tried: " + tried + ")");
        for (const WindowSystem* system : systems)
            lines->Put("", std::string(system->name) + ": " + system->FindHindrance());
        lines->Put("renderer", "unknown without a window system");
        return;
    }
    const bool wayland = std::strcmp(used.name, "wayland") == 0;
    lines->Put("window system",
               std::string(used.name) + ", " + SettingOf(wayland ? "WAYLAND_DISPLAY" : "DISPLAY"));
    lines->Put("", "the first of those on offer that answers; primary monitor " +
                       Pixels(screen.width, screen.height));
    for (const WindowSystem* system : systems.first(std::ranges::find(systems, &used) - systems.begin()))
        lines->Put("", "not " + std::string(system->name) + ": " + system->FindHindrance());
    if (const std::string hindrance = used.FindHindrance(); !hindrance.empty())
        lines->PutProblem("", hindrance);
    std::string renderer;
    std::string extensions;
    const std::string problem = AskOpenGl(screen, &renderer, &extensions);
    if (!problem.empty())
        lines->PutProblem("renderer", "no OpenGL, the screen would stay black: " + problem);
    else if (extensions.find("GL_ARB_multitexture") == std::string::npos)
        lines->PutProblem("renderer", renderer + ": without GL_ARB_multitexture, which the show needs");
    else
        lines->Put("renderer", renderer);
}

// The show loads the picture codec by these names (image/codec.cpp).
void PutCodec(Lines* lines) {
    for (const char* name : {"DevIL", "ilu"}) {
        const HMODULE module = LoadLibraryA(name);
        if (module == nullptr) {
            lines->PutProblem("picture codec",
                              "DevIL cannot be loaded: no textures (Debian package libdevil1c2)");
            return;
        }
        FreeLibrary(module);
    }
    lines->Put("picture codec", "DevIL, libIL.so.1 and libILU.so.1");
}

} // namespace

WhereReport FindOutWhere(std::span<const WindowSystem* const> systems) {
    WhereReport report;
    report.whole = true;
    Lines lines(&report);
    lines.Put("version", TAMBLOR_VERSION);
    lines.Put("program", ProgramFile());
    const std::vector<DataPlace> places = ListDataPlaces();
    PutPackage(&lines, places, UsedWindowSystem().FindScreen().width);
    PutConfiguration(&lines, places);
    PutLog(&lines, ChosenDataPlace(places));
    PutScreen(&lines, systems);
    PutCodec(&lines);
    return report;
}
