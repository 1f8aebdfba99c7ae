// A settings panel as far as a saver sees it: a window with a small black pane in it, whose number is written
// to the file "number". What comes up in the pane is written to the file "child": its class and its place
// there. It ends when a file "end" appears.
#include "win32/win32.h"

#include <cstdio>

namespace {

constexpr const char* kPanel = "TamblorTestPanel";
constexpr const char* kPane = "TamblorTestPane";
constexpr UINT_PTR kTimer = 1;
HWND pane = nullptr;

template <class... Values> void Write(const char* file, const char* format, Values... values) {
    if (std::FILE* out = std::fopen(file, "w")) {
        std::fprintf(out, format, values...);
        std::fclose(out);
    }
}

void TellOfChild() {
    const HWND child = GetWindow(pane, GW_CHILD);
    if (child == nullptr || IsWindowVisible(child) == FALSE)
        return;
    char name[64] = "";
    RECT area = {};
    GetClassNameA(child, name, sizeof name);
    GetWindowRect(child, &area);
    MapWindowPoints(nullptr, pane, reinterpret_cast<POINT*>(&area), 2);
    Write("child", "%s %ld,%ld %ld,%ld\n", name, area.left, area.top, area.right, area.bottom);
}

LRESULT CALLBACK PanelProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_TIMER:
        TellOfChild();
        if (GetFileAttributesA("end") != INVALID_FILE_ATTRIBUTES)
            DestroyWindow(window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

void RegisterBox(const char* name, WNDPROC proc, int brush) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = proc;
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(brush));
    windowClass.lpszClassName = name;
    RegisterClassA(&windowClass);
}

} // namespace

int main() {
    RegisterBox(kPanel, PanelProc, GRAY_BRUSH);
    RegisterBox(kPane, DefWindowProcA, BLACK_BRUSH);
    const HWND panel = CreateWindowExA(WS_EX_TOOLWINDOW, kPanel, "Panel", WS_POPUP | WS_VISIBLE, 80, 60, 200,
                                       160, nullptr, nullptr, nullptr, nullptr);
    pane = CreateWindowExA(0, kPane, "", WS_CHILD | WS_VISIBLE, 20, 20, 152, 112, panel, nullptr, nullptr,
                           nullptr);
    SetTimer(panel, kTimer, 20, nullptr);
    // As the system hands it to savers: in decimal, of 32 bits on every Windows.
    Write("number", "%lu\n", static_cast<unsigned long>(reinterpret_cast<UINT_PTR>(pane)));
    MSG message = {};
    while (GetMessageA(&message, nullptr, 0, 0) > 0)
        DispatchMessageA(&message);
    return 0;
}
