#include "win32/wayland/frames.h"

#include "win32/window_system.h"

#include <chrono>
#include <utility>

namespace wayland {

Frames frames;

void Frames::SetSeen(bool seen) {
    if (std::exchange(seen_, seen) != seen)
        ReportVisibility(seen);
}

void Frames::Forget() {
    if (request_ != nullptr)
        wl_callback_destroy(request_);
    request_ = nullptr;
}

void Frames::Begin(wl_surface* surface) {
    const std::lock_guard lock(mutex_);
    Forget();
    surface_ = surface;
    SetSeen(true);
}

void Frames::Pause() {
    const std::lock_guard lock(mutex_);
    Forget();
    surface_ = nullptr;
    SetSeen(false);
    asked_.notify_all();
}

void Frames::End() {
    const std::lock_guard lock(mutex_);
    Forget();
    surface_ = nullptr;
    seen_ = true;
    width_ = height_ = 0;
}

void Frames::SetSize(int width, int height) {
    const std::lock_guard lock(mutex_);
    width_ = width;
    height_ = height;
}

std::unique_lock<std::mutex> Frames::Hold() {
    return std::unique_lock(mutex_);
}

void Frames::OnAsked() {
    const std::lock_guard lock(mutex_);
    Forget();
    SetSeen(true);
    asked_.notify_all();
}

bool Frames::Show(const std::function<bool()>& show) {
    static constexpr wl_callback_listener kListener = {
        .done = [](void* data, wl_callback*, std::uint32_t) { static_cast<Frames*>(data)->OnAsked(); }};
    // Longer than a slow monitor's picture, and short beside the patience of one who wants it to end.
    constexpr std::chrono::milliseconds kLimit{100};
    std::unique_lock lock(mutex_);
    if (!asked_.wait_for(lock, kLimit, [this] { return request_ == nullptr; })) {
        SetSeen(false);
        return true;
    }
    if (surface_ == nullptr)
        return true;
    request_ = wl_surface_frame(surface_);
    wl_callback_add_listener(request_, &kListener, this);
    return show();
}

bool Frames::TakeSize(int* width, int* height) {
    const std::lock_guard lock(mutex_);
    if (width_ <= 0)
        return false;
    *width = std::exchange(width_, 0);
    *height = height_;
    return true;
}

} // namespace wayland
