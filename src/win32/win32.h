// The platform's functions. On Windows: the system's own headers. Elsewhere: the types, constants and
// functions of the same names and values that Tamblor calls, and no more; win32/posix and win32/windowing
// answer them.
#pragma once

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <mmsystem.h>
#include <shellapi.h>
#include <shlobj.h>

#ifndef CSIDL_SYSTEMX86
#define CSIDL_SYSTEMX86 0x0029
#endif

#else

#include <cstddef>
#include <cstdint>

#define WINAPI
#define CALLBACK
#define APIENTRY

using BOOL = int;
using INT = int;
using UINT = unsigned int;
using LONG = std::int32_t;
using DWORD = std::uint32_t;
using WORD = std::uint16_t;
using BYTE = unsigned char;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using LSTATUS = LONG;
using HRESULT = LONG;
using ATOM = WORD;
using COLORREF = DWORD;

// Handles. The value of a window's is its number in the window system.
using HANDLE = void*;
using HWND = struct HWND__*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HICON = struct HICON__*;
using HCURSOR = HICON;
using HBRUSH = struct HBRUSH__*;
using HMENU = struct HMENU__*;
using HDC = struct HDC__*;
using HGLRC = struct HGLRC__*;
using HKEY = struct HKEY__*;
using HGDIOBJ = void*;

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using FARPROC = INT_PTR(WINAPI*)();
using PROC = INT_PTR(WINAPI*)();
using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(void*);

struct POINT {
    LONG x, y;
};
struct RECT {
    LONG left, top, right, bottom;
};
struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
struct WNDCLASSA {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra, cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    const char* lpszMenuName;
    const char* lpszClassName;
};
struct OSVERSIONINFOA {
    DWORD dwOSVersionInfoSize, dwMajorVersion, dwMinorVersion, dwBuildNumber, dwPlatformId;
    char szCSDVersion[128];
};
struct PIXELFORMATDESCRIPTOR {
    WORD nSize, nVersion;
    DWORD dwFlags;
    BYTE iPixelType, cColorBits, cRedBits, cRedShift, cGreenBits, cGreenShift, cBlueBits, cBlueShift,
        cAlphaBits, cAlphaShift, cAccumBits, cAccumRedBits, cAccumGreenBits, cAccumBlueBits, cAccumAlphaBits,
        cDepthBits, cStencilBits, cAuxBuffers, iLayerType, bReserved;
    DWORD dwLayerMask, dwVisibleMask, dwDamageMask;
};
struct CRITICAL_SECTION {
    alignas(void*) unsigned char lock[64]; // in place: a lock needs no memory of its own
};

#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
#define INFINITE 0xFFFFFFFFu
#define WAIT_OBJECT_0 0u
#define WAIT_TIMEOUT 258u

#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu
#define FILE_ATTRIBUTE_DIRECTORY 0x0010u
#define FILE_ATTRIBUTE_NORMAL 0x0080u

#define ERROR_SUCCESS 0
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_PATH_NOT_FOUND 3
#define ERROR_ACCESS_DENIED 5
#define ERROR_NOT_SUPPORTED 50
#define ERROR_MORE_DATA 234
#define ERROR_INVALID_WINDOW_HANDLE 1400
#define ERROR_BAD_CONFIGURATION 1610
#define ERROR_BAD_DRIVER 2001

#define WM_CREATE 0x0001
#define WM_DESTROY 0x0002
#define WM_SIZE 0x0005
#define WM_ACTIVATE 0x0006
#define WM_PAINT 0x000F
#define WM_CLOSE 0x0010
#define WM_QUIT 0x0012
#define WM_ERASEBKGND 0x0014
#define WM_ACTIVATEAPP 0x001C
#define WM_SETCURSOR 0x0020
#define WM_NCACTIVATE 0x0086
#define WM_KEYDOWN 0x0100
#define WM_KEYUP 0x0101
#define WM_CHAR 0x0102
#define WM_SYSKEYDOWN 0x0104
#define WM_SYSKEYUP 0x0105
#define WM_SYSCHAR 0x0106
#define WM_SYSCOMMAND 0x0112
#define WM_TIMER 0x0113
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_RBUTTONDOWN 0x0204
#define WM_MBUTTONDOWN 0x0207

#define SC_NEXTWINDOW 0xF040
#define SC_PREVWINDOW 0xF050
#define SC_CLOSE 0xF060
#define SC_SCREENSAVE 0xF140

#define WS_POPUP 0x80000000u
#define WS_CHILD 0x40000000u
#define WS_VISIBLE 0x10000000u
#define WS_EX_TOPMOST 0x00000008u
#define CS_VREDRAW 0x0001u
#define CS_HREDRAW 0x0002u
#define CS_PARENTDC 0x0080u
#define CS_SAVEBITS 0x0800u
#define SW_SHOWNORMAL 1
#define SW_SHOW 5
#define SM_CXSCREEN 0
#define SM_CYSCREEN 1
#define IDOK 1
#define MB_OK 0x0000u
#define MB_ICONHAND 0x0010u
#define BLACK_BRUSH 4
#define SPI_SCREENSAVERRUNNING 97
#define VER_PLATFORM_WIN32_WINDOWS 1
#define VER_PLATFORM_WIN32_NT 2

#define PFD_TYPE_RGBA 0
#define PFD_MAIN_PLANE 0
#define PFD_DOUBLEBUFFER 0x0001u
#define PFD_DRAW_TO_WINDOW 0x0004u
#define PFD_SUPPORT_OPENGL 0x0020u

#define CSIDL_FONTS 0x0014
#define CSIDL_LOCAL_APPDATA 0x001C
#define CSIDL_SYSTEMX86 0x0029
#define CSIDL_FLAG_CREATE 0x8000
#define KEY_QUERY_VALUE 0x0001u
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(std::intptr_t{static_cast<LONG>(0x80000001u)}))
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x0200u
#define FORMAT_MESSAGE_FROM_SYSTEM 0x1000u

#define NORMAL_PRIORITY_CLASS 0x0020u
#define REALTIME_PRIORITY_CLASS 0x0100u
#define BELOW_NORMAL_PRIORITY_CLASS 0x4000u
#define THREAD_PRIORITY_LOWEST (-2)
#define THREAD_PRIORITY_NORMAL 0
#define THREAD_PRIORITY_TIME_CRITICAL 15

#define MAKEINTRESOURCEA(id) (reinterpret_cast<const char*>(static_cast<std::uintptr_t>(id)))

extern "C" {

// The clock, threads and locks.
DWORD WINAPI timeGetTime();
void WINAPI Sleep(DWORD milliseconds);
DWORD WINAPI GetCurrentThreadId();
HANDLE WINAPI CreateThread(void* security, std::size_t stackSize, LPTHREAD_START_ROUTINE start,
                           void* argument, DWORD flags, DWORD* id);
HANDLE WINAPI CreateEventA(void* security, BOOL manualReset, BOOL initialState, const char* name);
BOOL WINAPI SetEvent(HANDLE event);
DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds);
BOOL WINAPI TerminateThread(HANDLE thread, DWORD exitCode);
BOOL WINAPI CloseHandle(HANDLE handle);
HANDLE WINAPI GetCurrentProcess();
BOOL WINAPI SetPriorityClass(HANDLE process, DWORD priorityClass);
BOOL WINAPI SetThreadPriority(HANDLE thread, int priority);
void WINAPI InitializeCriticalSection(CRITICAL_SECTION* section);
void WINAPI DeleteCriticalSection(CRITICAL_SECTION* section);
void WINAPI EnterCriticalSection(CRITICAL_SECTION* section);
BOOL WINAPI TryEnterCriticalSection(CRITICAL_SECTION* section);
void WINAPI LeaveCriticalSection(CRITICAL_SECTION* section);

// What the last function that failed on this thread says about it; its words are FormatMessageA's.
DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD error);
DWORD WINAPI FormatMessageA(DWORD flags, const void* source, DWORD message, DWORD language, char* buffer,
                            DWORD size, void* arguments);

// Modules.
HMODULE WINAPI LoadLibraryA(const char* name);
FARPROC WINAPI GetProcAddress(HMODULE module, const char* name);
BOOL WINAPI FreeLibrary(HMODULE module);

// Configuration, folders and the shell.
LSTATUS WINAPI RegOpenKeyA(HKEY root, const char* name, HKEY* key);
LSTATUS WINAPI RegOpenKeyExA(HKEY root, const char* name, DWORD options, DWORD access, HKEY* key);
LSTATUS WINAPI RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                                DWORD* size);
LSTATUS WINAPI RegCloseKey(HKEY key);
DWORD WINAPI GetCurrentDirectoryA(DWORD size, char* buffer);
BOOL WINAPI SetCurrentDirectoryA(const char* path);
DWORD WINAPI GetFileAttributesA(const char* path);
BOOL WINAPI CreateDirectoryA(const char* path, void* security);
HRESULT WINAPI SHGetFolderPathA(HWND owner, int folder, HANDLE token, DWORD flags, char* path);
HINSTANCE WINAPI ShellExecuteA(HWND owner, const char* verb, const char* file, const char* parameters,
                               const char* folder, int show);
char* WINAPI GetCommandLineA();
BOOL WINAPI GetVersionExA(OSVERSIONINFOA* version);

// Windows and messages.
ATOM WINAPI RegisterClassA(const WNDCLASSA* windowClass);
HWND WINAPI CreateWindowExA(DWORD exStyle, const char* className, const char* title, DWORD style, int x,
                            int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                            void* data);
BOOL WINAPI DestroyWindow(HWND window);
BOOL WINAPI ShowWindow(HWND window, int show);
BOOL WINAPI UpdateWindow(HWND window);
BOOL WINAPI IsWindow(HWND window);
BOOL WINAPI ValidateRect(HWND window, const RECT* area);
BOOL WINAPI GetClientRect(HWND window, RECT* area);
BOOL WINAPI GetWindowRect(HWND window, RECT* area);
HWND WINAPI SetParent(HWND window, HWND parent);
BOOL WINAPI SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags);
HWND WINAPI GetForegroundWindow();
BOOL WINAPI GetMessageA(MSG* message, HWND window, UINT first, UINT last);
BOOL WINAPI TranslateMessage(const MSG* message);
LRESULT WINAPI DispatchMessageA(const MSG* message);
BOOL WINAPI PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT WINAPI SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
void WINAPI PostQuitMessage(int exitCode);
LRESULT CALLBACK DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR WINAPI DialogBoxParamA(HINSTANCE instance, const char* name, HWND parent, DLGPROC proc,
                               LPARAM parameter);
int WINAPI MessageBoxA(HWND owner, const char* text, const char* title, UINT type);
HCURSOR WINAPI SetCursor(HCURSOR cursor);
BOOL WINAPI GetCursorPos(POINT* position);
HICON WINAPI LoadIconA(HINSTANCE instance, const char* name);
HGDIOBJ WINAPI GetStockObject(int object);
int WINAPI GetSystemMetrics(int index);
BOOL WINAPI SystemParametersInfoA(UINT action, UINT parameter, void* data, UINT flags);

// OpenGL on a window.
HDC WINAPI GetDC(HWND window);
int WINAPI ReleaseDC(HWND window, HDC dc);
int WINAPI ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* wanted);
BOOL WINAPI SetPixelFormat(HDC dc, int format, const PIXELFORMATDESCRIPTOR* descriptor);
HGLRC WINAPI wglCreateContext(HDC dc);
BOOL WINAPI wglDeleteContext(HGLRC context);
BOOL WINAPI wglMakeCurrent(HDC dc, HGLRC context);
PROC WINAPI wglGetProcAddress(const char* name);
BOOL WINAPI SwapBuffers(HDC dc);

// The process entry, which the product supplies.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, char* commandLine, int show);
}

#endif
