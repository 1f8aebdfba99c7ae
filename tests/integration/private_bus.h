// A message bus of the test's own, for the saver both session bus and system bus, with a login manager on it
// and clients that ask for the screen to stay on.
#pragma once

#include "integration/program.h"

#include <atomic>
#include <memory>
#include <systemd/sd-bus.h>
#include <thread>

struct BusCloser {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};
using BusClient = std::unique_ptr<sd_bus, BusCloser>;

class PrivateBus {
public:
    PrivateBus() {
        const std::string configuration =
            folder_.Write("bus.conf", "<busconfig><listen>" + Address() +
                                          "</listen><policy context='default'><allow send_destination='*'/>"
                                          "<allow receive_sender='*'/><allow own='*'/></policy></busconfig>");
        daemon_.Start({DBUS_DAEMON_EXE, "--nofork", "--nopidfile", "--config-file=" + configuration}, {}, "/",
                      folder_.File("errors"));
        Eventually([this] { return Connect() != nullptr; });
    }
    std::string Address() const { return "unix:path=" + folder_.File("bus"); }
    BusClient Connect() const {
        sd_bus* bus = nullptr;
        sd_bus_new(&bus);
        sd_bus_set_address(bus, Address().c_str());
        sd_bus_set_bus_client(bus, 1);
        BusClient client(bus);
        const char* name = nullptr; // once it has one
        const bool connected = sd_bus_start(bus) >= 0 && sd_bus_get_unique_name(bus, &name) >= 0;
        return connected ? std::move(client) : nullptr;
    }
    void Kill() { daemon_.Kill(); }
    void Stop() { daemon_.Signal(SIGSTOP); } // who connects is not answered

private:
    TempFolder folder_;
    Program daemon_;
};

// A thread that answers what comes on a connection, until it goes.
inline std::jthread AnswerOn(sd_bus* bus) {
    return std::jthread([bus](const std::stop_token& ended) {
        while (!ended.stop_requested()) {
            while (sd_bus_process(bus, nullptr) > 0) {
            }
            sd_bus_wait(bus, 10000); // microseconds
        }
    });
}

// What the saver asks of the login manager.
class FakeLogin {
public:
    explicit FakeLogin(const PrivateBus& bus) : bus_(bus.Connect()) {
        sd_bus_add_filter(bus_.get(), nullptr, Answer, this);
        sd_bus_request_name(bus_.get(), "org.freedesktop.login1", 0);
        thread_ = AnswerOn(bus_.get());
    }

    std::atomic<const char*> blocks = "sleep:shutdown"; // what programs have asked it not to do
    std::atomic<bool> locked = false;
    std::atomic<int> asked = 0; // how often it was asked about the session
    std::atomic<int> locks = 0; // how often it was asked to lock it

private:
    static int Answer(sd_bus_message* message, void* data, sd_bus_error*) {
        constexpr const char* kSession = "/org/freedesktop/login1/session/c2";
        FakeLogin& self = *static_cast<FakeLogin*>(data);
        const char *member = sd_bus_message_get_member(message), *path = sd_bus_message_get_path(message);
        const std::string method = member != nullptr ? member : "";
        const bool isOfSession = path != nullptr && std::string(path) == kSession;
        const char *word = "", *property = "";
        if (method == "GetSession") {
            sd_bus_message_read(message, "s", &word);
            return std::string(word) == "auto"
                       ? sd_bus_reply_method_return(message, "o", kSession)
                       : sd_bus_reply_method_errorf(message, "org.freedesktop.login1.NoSuchSession", "none");
        }
        if (method == "Lock" && isOfSession) {
            ++self.locks;
            return sd_bus_reply_method_return(message, "");
        }
        if (method != "Get") // a property
            return 0;
        sd_bus_message_read(message, "ss", &word, &property);
        if (std::string(property) == "BlockInhibited" && !isOfSession)
            return sd_bus_reply_method_return(message, "v", "s", self.blocks.load());
        if (std::string(property) != "LockedHint" || !isOfSession)
            return 0;
        ++self.asked;
        return sd_bus_reply_method_return(message, "v", "b", self.locked ? 1 : 0);
    }

    BusClient bus_;
    std::jthread thread_;
};

// The cookie; 0 when it is refused.
inline std::uint32_t Inhibit(sd_bus* client, const char* path = "/org/freedesktop/ScreenSaver") {
    sd_bus_message* reply = nullptr;
    std::uint32_t cookie = 0;
    sd_bus_call_method(client, "org.freedesktop.ScreenSaver", path, "org.freedesktop.ScreenSaver", "Inhibit",
                       nullptr, &reply, "ss", "player", "a film");
    if (reply != nullptr)
        sd_bus_message_read(reply, "u", &cookie);
    sd_bus_message_unref(reply);
    return cookie;
}

inline bool UnInhibit(sd_bus* client, std::uint32_t cookie) {
    return sd_bus_call_method(client, "org.freedesktop.ScreenSaver", "/ScreenSaver",
                              "org.freedesktop.ScreenSaver", "UnInhibit", nullptr, nullptr, "u", cookie) >= 0;
}
