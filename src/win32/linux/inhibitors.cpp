#include "win32/linux/inhibitors.h"

#include <algorithm>
#include <systemd/sd-bus.h>
#include <utility>

namespace {

constexpr const char* kName = "org.freedesktop.ScreenSaver";
// The second is older, and programs still call it.
constexpr const char* kPaths[] = {"/org/freedesktop/ScreenSaver", "/ScreenSaver"};
constexpr std::size_t kMost = 1000; // no programs in earnest

} // namespace

struct Inhibitors::Calls {
    static Inhibitors& Of(void* self) { return *static_cast<Inhibitors*>(self); }

    static int Inhibit(sd_bus_message* message, void* data, sd_bus_error* error) {
        Inhibitors& self = Of(data);
        if (self.held_.size() >= kMost)
            return sd_bus_error_set(error, SD_BUS_ERROR_LIMITS_EXCEEDED, "too many inhibitors");
        sd_bus_track* client = nullptr;
        int result = sd_bus_track_new(self.bus_, &client, Gone, &self);
        if (result >= 0)
            result = sd_bus_track_add_sender(client, message);
        if (result < 0) {
            sd_bus_track_unref(client);
            return result;
        }
        do
            ++self.lastCookie_; // 0 is none's
        while (self.lastCookie_ == 0 || self.held_.contains(self.lastCookie_));
        self.held_[self.lastCookie_] = client;
        return sd_bus_reply_method_return(message, "u", self.lastCookie_);
    }

    // A cookie that another program has is none.
    static int UnInhibit(sd_bus_message* message, void* data, sd_bus_error* error) {
        Inhibitors& self = Of(data);
        std::uint32_t cookie = 0;
        const int result = sd_bus_message_read(message, "u", &cookie);
        if (result < 0)
            return result;
        const auto found = self.held_.find(cookie);
        if (found == self.held_.end() || sd_bus_track_count_sender(found->second, message) <= 0)
            return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "no such cookie");
        self.Drop(found);
        return sd_bus_reply_method_return(message, "");
    }

    static int SimulateUserActivity(sd_bus_message* message, void* data, sd_bus_error*) {
        Of(data).anew_ = true;
        return sd_bus_reply_method_return(message, "");
    }

    // It has left the bus.
    static int Gone(sd_bus_track* client, void* data) {
        Inhibitors& self = Of(data);
        const auto found =
            std::ranges::find(self.held_, client, &std::pair<const std::uint32_t, sd_bus_track*>::second);
        if (found != self.held_.end())
            self.Drop(found);
        return 0;
    }

    static const sd_bus_vtable kTable[];
};

const sd_bus_vtable Inhibitors::Calls::kTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Inhibit", "ss", "u", Inhibit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("UnInhibit", "u", "", UnInhibit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("SimulateUserActivity", "", "", SimulateUserActivity, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

// A saver that starts later may take the name over.
Inhibitors::Inhibitors() {
    if (sd_bus_open_user(&bus_) < 0)
        return;
    for (const char* path : kPaths)
        sd_bus_add_object_vtable(bus_, nullptr, path, kName, Calls::kTable, this);
    sd_bus_request_name(bus_, kName, SD_BUS_NAME_QUEUE | SD_BUS_NAME_ALLOW_REPLACEMENT);
}

Inhibitors::~Inhibitors() {
    while (Any())
        Drop(held_.begin());
    sd_bus_flush_close_unref(bus_);
}

int Inhibitors::Descriptor() const {
    return bus_ != nullptr ? sd_bus_get_fd(bus_) : -1;
}

bool Inhibitors::Process() {
    int result = 1;
    while (bus_ != nullptr && result > 0)
        result = sd_bus_process(bus_, nullptr);
    if (bus_ != nullptr && (result < 0 || sd_bus_flush(bus_) < 0)) { // the bus has ended
        while (Any())
            Drop(held_.begin());
        bus_ = sd_bus_close_unref(bus_);
    }
    return std::exchange(anew_, false);
}

void Inhibitors::Drop(std::map<std::uint32_t, sd_bus_track*>::iterator which) {
    sd_bus_track_unref(which->second);
    held_.erase(which);
    anew_ = anew_ || !Any();
}
