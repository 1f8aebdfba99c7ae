// When the window's frames are shown, and how large they are. The loop's thread shows them, each after the
// compositor has asked for it; the main thread hears it ask, and gives and takes the window's place.
#pragma once

#include <wayland-client.h>

#include <condition_variable>
#include <functional>
#include <mutex>

namespace wayland {

class Frames {
public:
    // Main thread. The surface has a place from now on; before, frames are lost.
    void Begin(wl_surface* surface);
    // It has none for a while: nobody sees the window.
    void Pause();
    // There is no window any more, and no loop.
    void End();
    void SetSize(int width, int height);
    // While it is held, no frame is shown.
    [[nodiscard]] std::unique_lock<std::mutex> Hold();

    // The loop's thread. Shows a frame by `show`, which commits the surface, when the compositor asks for
    // one. When it does not ask, as for an output that is off, the frame is lost, and it is reported that
    // nobody sees the window, until it does. Gives what `show` gives.
    bool Show(const std::function<bool()>& show);
    // The size of frames from now on, once for each that is set.
    bool TakeSize(int* width, int* height);

private:
    void SetSeen(bool seen);
    void OnAsked();
    void Forget();

    std::mutex mutex_;
    std::condition_variable asked_;
    wl_surface* surface_ = nullptr;  // null: it has no place
    wl_callback* request_ = nullptr; // what the compositor asks by; null: it has asked
    bool seen_ = true;
    int width_ = 0, height_ = 0; // 0: taken
};

extern Frames frames;

} // namespace wayland
