// What the fakes' files share.
#pragma once

#include "fakes/fake_win32.h"

inline bool FakeFails(const char* name) {
    return fakeWin32.failing.contains(name);
}
void ResetFakeWindow();
