// The password protocol of the Windows 95 family, where the saver itself asks for the password. Elsewhere the
// system does, and all of this stays empty.
#pragma once

#include "win32/win32.h"

extern int w95;                                 // 1 on the Windows 95 family
extern HMODULE hPwdLib;                         // the verification module, if the user has set a password
extern BOOL(WINAPI* VerifyScreenSavePwd)(HWND); // may the saver close? null: no password is needed

void LoadSaverPassword();
void FreeSaverPassword();

// Shows the system's dialog to change the password. Does nothing where the system has none.
void ScreenSaverChangePassword(HWND parent);
