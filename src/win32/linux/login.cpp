#include "win32/linux/login.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>

namespace {

constexpr const char* kLogin = "org.freedesktop.login1";
constexpr const char* kManager = "org.freedesktop.login1.Manager";
constexpr const char* kManagerPath = "/org/freedesktop/login1";
constexpr const char* kSession = "org.freedesktop.login1.Session";
constexpr std::uint64_t kPatience = 2000000; // microseconds

struct Closer {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
    void operator()(char* text) const { std::free(text); }
};
using Bus = std::unique_ptr<sd_bus, Closer>;

// Null when there is none. A connection for each question: they are rare, and the bus may be started anew.
Bus OpenBus() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) < 0)
        return nullptr;
    sd_bus_set_method_call_timeout(bus, kPatience);
    return Bus(bus);
}

std::string FindSession(sd_bus* bus, const char* id) {
    sd_bus_message* reply = nullptr;
    const char* path = nullptr;
    if (id != nullptr)
        sd_bus_call_method(bus, kLogin, kManagerPath, kManager, "GetSession", nullptr, &reply, "s", id);
    const std::unique_ptr<sd_bus_message, Closer> owner(reply);
    return reply != nullptr && sd_bus_message_read(reply, "o", &path) >= 0 ? path : "";
}

// "auto" is the caller's, or the user's on the screen where the caller is a service. Empty: there is none.
std::string FindSession(sd_bus* bus) {
    const std::string named = FindSession(bus, std::getenv("XDG_SESSION_ID"));
    return named.empty() ? FindSession(bus, "auto") : named;
}

} // namespace

// A list of words with colons between them.
bool LoginBlocksIdle() {
    const Bus bus = OpenBus();
    char* text = nullptr;
    if (bus != nullptr)
        sd_bus_get_property_string(bus.get(), kLogin, kManagerPath, kManager, "BlockInhibited", nullptr,
                                   &text);
    const std::unique_ptr<char, Closer> owner(text);
    return text != nullptr && (std::string(":") + text + ":").find(":idle:") != std::string::npos;
}

bool SessionIsLocked() {
    const Bus bus = OpenBus();
    const std::string session = bus != nullptr ? FindSession(bus.get()) : "";
    int locked = 0;
    return !session.empty() &&
           sd_bus_get_property_trivial(bus.get(), kLogin, session.c_str(), kSession, "LockedHint", nullptr,
                                       'b', &locked) >= 0 &&
           locked != 0;
}

void LockSession() {
    const Bus bus = OpenBus();
    const std::string session = bus != nullptr ? FindSession(bus.get()) : "";
    sd_bus_error error = SD_BUS_ERROR_NULL;
    const char* problem = nullptr;
    if (session.empty())
        problem = "no login manager knows it";
    else if (sd_bus_call_method(bus.get(), kLogin, session.c_str(), kSession, "Lock", &error, nullptr, "") <
             0)
        problem = error.message != nullptr ? error.message : "the login manager does not answer";
    if (problem != nullptr)
        std::fprintf(stderr, "tamblor: the session cannot be locked: %s\n", problem);
    sd_bus_error_free(&error);
}
