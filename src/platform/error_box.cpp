// Apart from the trace, so that programs which show no message box need no window system.
#include "platform/trace.h"
#include "win32/win32.h"

#include <cstdarg>
#include <cstdio>

namespace {

thread_local char trcDynamicError[4096 + 1]; // stays as it is while this thread's box is shown

} // namespace

int errmsg(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(trcDynamicError, sizeof trcDynamicError, format, arguments);
    va_end(arguments);
    err("%s", trcDynamicError);
    return MessageBoxA(nullptr, trcDynamicError, "Error", MB_ICONHAND);
}
