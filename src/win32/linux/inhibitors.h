// Programs that ask, on the session bus, for the screen to stay on: org.freedesktop.ScreenSaver, served here
// where nobody else does, or from when nobody does any more. Without a session bus nobody asks.
#pragma once

#include <cstdint>
#include <map>

struct sd_bus;
struct sd_bus_message;
struct sd_bus_track;

class Inhibitors {
public:
    Inhibitors();
    ~Inhibitors();
    Inhibitors(const Inhibitors&) = delete;
    Inhibitors& operator=(const Inhibitors&) = delete;

    // Can be read when there is something to process; -1: there is no bus.
    int Descriptor() const;
    // Answers what has come, without waiting. True when the user's idle time is to be counted anew: the last
    // program has taken its request back or left the bus, or one says that the user is there.
    bool Process();
    // A program wants the screen to stay on.
    bool Any() const { return !held_.empty(); }

private:
    struct Calls; // what the bus calls

    void Drop(std::map<std::uint32_t, sd_bus_track*>::iterator which);

    sd_bus* bus_ = nullptr;
    std::map<std::uint32_t, sd_bus_track*> held_; // by cookie; each follows the program that has it
    std::uint32_t lastCookie_ = 0;
    bool anew_ = false;
};
