// What the services for screenshots have in common: calls on the session bus that end in time, descriptors,
// and what a picture of a screen can be.
#pragma once

#include "win32/window_system.h"

#include <systemd/sd-bus.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace wayland {

using std::chrono::milliseconds;

// No screen in earnest; the numbers come from elsewhere.
inline constexpr std::uint32_t kLargestSide = 32768;
inline constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 27;

inline bool IsLikeScreen(std::uint32_t width, std::uint32_t height) {
    return width > 0 && height > 0 && width <= kLargestSide && height <= kLargestSide &&
           std::uint64_t{width} * height <= kMostPixels;
}

struct Closer {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, Closer>;

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return number_; }
    int Release() { return std::exchange(number_, -1); }
    void Close() {
        if (number_ >= 0)
            close(Release());
    }

private:
    int number_;
};

// Whom a call on the bus is for.
struct Object {
    const char* service;
    const char* path;
    const char* interface;
};

// The session bus, for so long.
class Session {
public:
    explicit Session(milliseconds patience) { Allow(patience); }

    void Allow(milliseconds patience) { end_ = std::chrono::steady_clock::now() + patience; }
    milliseconds Left() const {
        return std::max(std::chrono::ceil<milliseconds>(end_ - std::chrono::steady_clock::now()),
                        milliseconds{0});
    }

    bool Open(std::string* problem) {
        sd_bus* bus = nullptr;
        if (sd_bus_open_user(&bus) >= 0)
            bus_.reset(bus);
        const bool ready = bus != nullptr && WaitUntil([bus] { return sd_bus_is_ready(bus) > 0; });
        if (!ready)
            *problem = "there is no session bus";
        return ready;
    }
    sd_bus* Bus() const { return bus_.get(); }

    // Handles what comes from the bus until it is done. False: it was not in time, or the bus has ended.
    template <class Done> bool WaitUntil(Done done) const {
        int result = 0;
        while (result >= 0 && !done()) {
            const std::uint64_t left = Microseconds();
            result = sd_bus_process(bus_.get(), nullptr);
            if (result == 0)
                result = left > 0 ? Wait(left) : -ETIME;
        }
        return result >= 0;
    }
    // The answer to a call, with its arguments as sd-bus has them; null, with a problem, when there is none.
    template <class... Arguments>
    Message Call(const Object& object, const char* method, std::string* problem, const char* types,
                 Arguments... arguments) const {
        sd_bus_error error = SD_BUS_ERROR_NULL;
        sd_bus_message* reply = nullptr;
        sd_bus_set_method_call_timeout(Bus(), std::max<std::uint64_t>(Microseconds(), 1));
        const int result = sd_bus_call_method(Bus(), object.service, object.path, object.interface, method,
                                              &error, &reply, types, arguments...);
        if (result < 0)
            *problem = error.message != nullptr ? error.message : std::strerror(-result);
        sd_bus_error_free(&error);
        return Message(reply);
    }

private:
    std::uint64_t Microseconds() const {
        return static_cast<std::uint64_t>(std::chrono::microseconds(Left()).count());
    }
    int Wait(std::uint64_t microseconds) const {
        const int result = sd_bus_wait(bus_.get(), microseconds);
        return result == -EINTR ? 0 : result;
    }

    std::unique_ptr<sd_bus, Closer> bus_;
    std::chrono::steady_clock::time_point end_;
};

// Hands the entries of a dictionary, of which it reads those of one type, to `take`.
template <class Value, class Take> void ReadEntries(sd_bus_message* message, const char* type, Take take) {
    if (sd_bus_message_enter_container(message, 'a', "{sv}") < 0)
        return;
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        const char* name = "";
        const char* contents = "";
        Value value = {};
        sd_bus_message_read(message, "s", &name);
        sd_bus_message_peek_type(message, nullptr, &contents);
        if (std::strcmp(contents, type) != 0)
            sd_bus_message_skip(message, "v");
        else if (sd_bus_message_read(message, "v", type, &value) > 0)
            take(std::string(name), value);
        sd_bus_message_exit_container(message);
    }
}

// Gives the result of `photograph`; what is left of a failure is its problem, with `whose` before it.
template <class Function>
bool Attempt(const char* whose, Photograph* picture, std::string* problem, Function photograph) {
    try {
        if (photograph())
            return true;
    } catch (const std::bad_alloc&) {
        *problem = "out of memory";
    }
    *picture = {};
    *problem = std::string(whose) + ": " + *problem;
    return false;
}

} // namespace wayland
