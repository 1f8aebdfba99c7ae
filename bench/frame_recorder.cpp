// A library to be preloaded into any program that draws with OpenGL on X: after each buffer swap it writes
// down when that was, what the process had then used of the processors, and how much memory it held.
// scripts/bench reads it.
//
// TAMBLOR_RECORD: a file made by the reader, as large as all frames need: a head of 64 bytes, then one record
// for each frame; the first process that swaps writes into it. TAMBLOR_RECORD_WATCH: the address of an int in
// the program's file (as nm prints it), whose value goes into each record. Frames that the file has no room
// for are not recorded.
#include <GL/glx.h>

#include <EGL/egl.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Head {
    std::uint32_t frames; // complete records; written last
    std::int32_t process; // whose frames they are; 0: nobody's yet
    std::uint32_t unused[14];
};
struct Frame {
    std::int64_t shown;     // CLOCK_MONOTONIC when the swap returned, nanoseconds
    std::int64_t processor; // of all threads since the process began, nanoseconds
    std::uint32_t resident; // KiB
    std::uint32_t peak;     // KiB
    std::int32_t watched;
    std::uint32_t unused;
};
static_assert(sizeof(Head) == 64 && sizeof(Frame) == 32);

Head* head = nullptr;
Frame* records = nullptr;
std::uint32_t room = 0;
const int* watched = nullptr;
thread_local bool swapping = false; // a program's own glXSwapBuffers may call eglSwapBuffers

std::int64_t localNanoseconds(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);
    return std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

void localFindWatched() {
    const char* address = std::getenv("TAMBLOR_RECORD_WATCH");
    if (address == nullptr || *address == '\0')
        return;
    std::uintptr_t program = 0; // where its file lies in memory; the first that is listed
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* base) {
            *static_cast<std::uintptr_t*>(base) = info->dlpi_addr;
            return 1;
        },
        &program);
    watched = reinterpret_cast<const int*>(program + std::strtoul(address, nullptr, 16));
}

void localOpen() {
    const char* name = std::getenv("TAMBLOR_RECORD");
    const int file = name != nullptr ? open(name, O_RDWR | O_CLOEXEC) : -1;
    struct stat facts = {};
    if (file < 0 || fstat(file, &facts) != 0 || facts.st_size < static_cast<off_t>(sizeof(Head)))
        return;
    void* page =
        mmap(nullptr, static_cast<std::size_t>(facts.st_size), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (page == MAP_FAILED)
        return;
    std::int32_t nobody = 0;
    auto* found = static_cast<Head*>(page);
    if (!std::atomic_ref(found->process).compare_exchange_strong(nobody, getpid()))
        return;
    localFindWatched();
    records = reinterpret_cast<Frame*>(found + 1);
    room =
        static_cast<std::uint32_t>((static_cast<std::size_t>(facts.st_size) - sizeof(Head)) / sizeof(Frame));
    head = found;
}

// One number of /proc/self/status, in KiB.
std::uint32_t localStatus(const char* text, const char* key) {
    const char* found = std::strstr(text, key);
    return found != nullptr ? static_cast<std::uint32_t>(std::strtoul(found + std::strlen(key), nullptr, 10))
                            : 0;
}

void localRecord() {
    static pthread_once_t once = PTHREAD_ONCE_INIT;
    const std::int64_t shown = localNanoseconds(CLOCK_MONOTONIC);
    const std::int64_t processor = localNanoseconds(CLOCK_PROCESS_CPUTIME_ID);
    pthread_once(&once, localOpen);
    if (head == nullptr || head->frames >= room)
        return;
    char text[4096] = {};
    const int status = open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    if (status >= 0) {
        if (read(status, text, sizeof text - 1) < 0)
            text[0] = '\0';
        close(status);
    }
    records[head->frames] = {shown,
                             processor,
                             localStatus(text, "VmRSS:"),
                             localStatus(text, "VmHWM:"),
                             watched != nullptr ? *watched : 0,
                             0};
    std::atomic_ref(head->frames).fetch_add(1, std::memory_order_release);
}

template <class Function> Function* localNext(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// The program's calls come here, as the library is found before the system's.
extern "C" {

void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    static auto* const next = localNext<void(Display*, GLXDrawable)>("glXSwapBuffers");
    const bool outer = !swapping;
    swapping = true;
    next(display, drawable);
    if (outer) {
        localRecord();
        swapping = false;
    }
}

EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    static auto* const next = localNext<EGLBoolean(EGLDisplay, EGLSurface)>("eglSwapBuffers");
    const bool outer = !swapping;
    swapping = true;
    const EGLBoolean done = next(display, surface);
    if (outer) {
        localRecord();
        swapping = false;
    }
    return done;
}
}
