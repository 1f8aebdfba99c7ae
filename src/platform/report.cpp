#include "platform/report.h"

#include "platform/trace.h"

#include <cstdarg>
#include <cstdio>

void fxReport(const char* format, ...) {
    FXStr line;
    va_list arguments;
    va_start(arguments, format);
    line.FormatV(format, arguments);
    va_end(arguments);
    std::fprintf(stderr, "tamblor: %s\n", line.text);
    err("%s\n", line.text);
}

FXStr fxErrorWords(DWORD error) {
    char text[FXStr::kCapacity + 1] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                   sizeof text, nullptr);
    FXStr words(text); // some systems end it with a line end, or break it
    words.ExchangeChars('\r', ' ');
    words.ExchangeChars('\n', ' ');
    words.TrimSpaces();
    if (words.IsEmpty())
        words.Format("error %lu", static_cast<unsigned long>(error));
    return words;
}
