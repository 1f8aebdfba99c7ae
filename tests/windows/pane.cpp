// A settings panel as far as a saver sees it: a black window with a small pane in it, whose number is written
// to the file "number". What comes up in the pane is written to the file "child": its class and its place
// there. It ends when a file "end" appears.
#include "win32/win32.h"

#include <fstream>

int main() {
    WNDCLASSA box = {};
    box.lpfnWndProc = DefWindowProcA;
    box.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    box.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    box.lpszClassName = "TamblorTestBox";
    RegisterClassA(&box);
    const auto create = [&](DWORD exStyle, DWORD style, const RECT& area, HWND parent) {
        return CreateWindowExA(exStyle, box.lpszClassName, "", style | WS_VISIBLE, area.left, area.top,
                               area.right, area.bottom, parent, nullptr, nullptr, nullptr);
    };
    const HWND panel = create(WS_EX_TOOLWINDOW, WS_POPUP, {80, 60, 200, 160}, nullptr);
    const HWND pane = create(0, WS_CHILD, {20, 20, 152, 112}, panel);
    // As the system hands it to savers: in decimal, of 32 bits on every Windows.
    std::ofstream("number") << static_cast<unsigned long>(reinterpret_cast<UINT_PTR>(pane)) << '\n';
    while (GetFileAttributesA("end") == INVALID_FILE_ATTRIBUTES) {
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;)
            DispatchMessageA(&message);
        if (const HWND child = GetWindow(pane, GW_CHILD);
            child != nullptr && IsWindowVisible(child) != FALSE) {
            char name[64] = "";
            RECT area = {};
            GetClassNameA(child, name, sizeof name);
            GetWindowRect(child, &area);
            MapWindowPoints(nullptr, pane, reinterpret_cast<POINT*>(&area), 2);
            std::ofstream("child") << name << ' ' << area.left << ',' << area.top << ' ' << area.right << ','
                                   << area.bottom << '\n';
        }
        Sleep(20);
    }
    DestroyWindow(panel);
    return 0;
}
