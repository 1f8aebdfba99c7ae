#include "progress.h"

#include <cstdio>
#include <unistd.h>

Progress::Progress(const char* what, std::size_t total, bool wanted)
    : what_(what), total_(total), shown_(wanted && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
    if (shown_)
        std::fputc('\n', stderr);
}

void Progress::Clear() {
    if (shown_)
        std::fputs("\r\033[K", stderr);
    shown_ = false;
}

void Progress::Done(std::size_t count) {
    if (shown_)
        std::fprintf(stderr, "\r%s %zu of %zu (%zu %%)", what_, count, total_,
                     count * 100 / (total_ ? total_ : 1));
}
