// Memory that two processes share by way of a file.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

// Mapped until the process ends. Null: there is no such file.
template <class T> T* MapShared(const char* name) {
    const int file = name != nullptr ? open(name, O_RDWR | O_CLOEXEC) : -1;
    void* const memory = mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory != MAP_FAILED ? static_cast<T*>(memory) : nullptr;
}
