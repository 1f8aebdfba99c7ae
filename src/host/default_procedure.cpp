#include "host/default_procedure.h"

#include "host/message_routing.h"
#include "host/saver_password.h"

int fChildPreview = 0;
int checking_pwd = 0;
int closing = 0;
POINT pt_orig = {};

namespace {

void localRequestClose(HWND window) {
    if (checking_pwd == 0)
        PostMessageA(window, WM_CLOSE, 0, 0);
}

bool localPointerMoved() {
    POINT now = {};
    GetCursorPos(&now);
    return now.x != pt_orig.x || now.y != pt_orig.y;
}

void localClose(HWND window) {
    closing = 1;
    if (VerifyScreenSavePwd != nullptr) {
        closing = 0;
        checking_pwd = 1;
        closing = SendMessageA(window, SCRM_VERIFYPW, 0, 0) != 0 ? 1 : 0;
        checking_pwd = 0;
    }
    if (closing == 1)
        DestroyWindow(window);
    else
        GetCursorPos(&pt_orig);
}

} // namespace

LRESULT CALLBACK DefScreenSaverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (RouteDefMessage(message, wParam, fChildPreview == 1, closing == 1, checking_pwd == 1)) {
    case DefAction::Close:
        localClose(window);
        return 0;
    case DefAction::VerifyPassword:
        return VerifyScreenSavePwd == nullptr ? 1 : VerifyScreenSavePwd(window);
    case DefAction::HideCursor:
        SetCursor(nullptr);
        return TRUE;
    case DefAction::Swallow:
        return 0;
    case DefAction::PointerMoved:
        if (localPointerMoved())
            localRequestClose(window);
        break;
    case DefAction::CloseRequest:
        localRequestClose(window);
        break;
    case DefAction::Default:
        break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
