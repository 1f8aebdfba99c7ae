// Dialogs, which this system shows where its user is: on the terminal.
#include "win32/win32.h"

#include <cstdio>

int MessageBoxA(HWND, const char* text, const char* title, UINT) {
    std::fprintf(stderr, "tamblor: %s%s%s\n", title ? title : "", title ? ": " : "", text ? text : "");
    return IDOK;
}

// There is no settings dialog on any system; a person at a terminal is told what to do instead.
INT_PTR DialogBoxParamA(HINSTANCE, const char*, HWND, DLGPROC, LPARAM) {
    std::fputs("tamblor: there is nothing to set up. \"tamblor /s\" runs the show, any key ends it.\n"
               "Another show's folder is named by a line \"path = /folder\" in "
               "~/.config/tamblor/tamblor.conf\n",
               stderr);
    return -1;
}

HICON LoadIconA(HINSTANCE, const char*) {
    return nullptr;
}

HGDIOBJ GetStockObject(int) {
    return nullptr;
}
