// Whether the user is there, as the compositor knows it. Programs that want the screen to stay on tell the
// compositor, which then does not call it idle.
#include "win32/wayland/wayland.h"

#include "ext-idle-notify-v1-client-protocol.h"
#include "kde-idle-client-protocol.h"

#include <cstdio>
#include <utility>

namespace wayland {

namespace {

ext_idle_notification_v1* notification = nullptr;
org_kde_kwin_idle_timeout* kdeTimeout = nullptr;
int watched = 0;     // milliseconds; 0: nobody has asked
bool isIdle = false; // as it was last told

void Note(bool idle) {
    isIdle = idle;
    ReportIdle(idle);
}

constexpr ext_idle_notification_v1_listener kListener = {
    .idled = [](void*, ext_idle_notification_v1*) { Note(true); },
    .resumed = [](void*, ext_idle_notification_v1*) { Note(false); },
};

constexpr org_kde_kwin_idle_timeout_listener kKdeListener = {
    .idle = [](void*, org_kde_kwin_idle_timeout*) { Note(true); },
    .resumed = [](void*, org_kde_kwin_idle_timeout*) { Note(false); },
};

// What keeps idle time from being known; "": nothing.
std::string FindObstacle() {
    if (Connection() == nullptr)
        return FindHindrance();
    if (Offers().idle == nullptr && Offers().kdeIdle == nullptr)
        return "the compositor tells nobody of idle time (it has no ext_idle_notifier_v1)";
    return Seat() == nullptr ? "the compositor has no seat" : "";
}

} // namespace

// The compositor counts from here on. So one who asks again for the same time is told what is known.
bool WatchIdle(int milliseconds) {
    if (const std::string obstacle = FindObstacle(); !obstacle.empty()) {
        std::fprintf(stderr, "tamblor: %s\n", obstacle.c_str());
        return false;
    }
    if (milliseconds == watched) {
        ReportIdle(isIdle);
        return true;
    }
    UnwatchIdle();
    watched = milliseconds;
    const auto timeout = static_cast<std::uint32_t>(milliseconds);
    if (Offers().idle != nullptr) {
        notification = ext_idle_notifier_v1_get_idle_notification(Offers().idle, timeout, Seat());
        ext_idle_notification_v1_add_listener(notification, &kListener, nullptr);
    } else {
        kdeTimeout = org_kde_kwin_idle_get_idle_timeout(Offers().kdeIdle, Seat(), timeout);
        org_kde_kwin_idle_timeout_add_listener(kdeTimeout, &kKdeListener, nullptr);
    }
    Note(false);
    return true;
}

void UnwatchIdle() {
    if (notification != nullptr)
        ext_idle_notification_v1_destroy(std::exchange(notification, nullptr));
    if (kdeTimeout != nullptr)
        org_kde_kwin_idle_timeout_release(std::exchange(kdeTimeout, nullptr));
    watched = 0;
}

} // namespace wayland
