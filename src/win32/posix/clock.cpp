// The millisecond tick. A test may turn the clock of a running saver: TAMBLOR_CLOCK names a file of four
// bytes that holds the tick instead, and is only read.
#include "win32/win32.h"

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::uint32_t* MappedClock() {
    const char* name = std::getenv("TAMBLOR_CLOCK");
    if (name == nullptr)
        return nullptr;
    const int file = open(name, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat facts = {};
    void* page = MAP_FAILED;
    if (file >= 0 && fstat(file, &facts) == 0 && facts.st_size >= static_cast<off_t>(sizeof(std::uint32_t)))
        page = mmap(nullptr, sizeof(std::uint32_t), PROT_READ, MAP_SHARED, file, 0);
    if (file >= 0)
        close(file);
    return page == MAP_FAILED ? nullptr : static_cast<std::uint32_t*>(page);
}

} // namespace

DWORD timeGetTime() {
    static std::uint32_t* const mapped = MappedClock();
    if (mapped != nullptr)
        return std::atomic_ref<std::uint32_t>(*mapped).load(std::memory_order_relaxed);
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<DWORD>(static_cast<std::uint64_t>(now.tv_sec) * 1000u +
                              static_cast<std::uint64_t>(now.tv_nsec) / 1000000u);
}

void Sleep(DWORD milliseconds) {
    if (milliseconds == 0) {
        sched_yield();
        return;
    }
    timespec left = {static_cast<time_t>(milliseconds / 1000u),
                     static_cast<long>(milliseconds % 1000u) * 1000000L};
    while (nanosleep(&left, &left) != 0)
        continue; // a signal woke us
}
