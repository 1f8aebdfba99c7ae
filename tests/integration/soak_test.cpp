// The show for a long time, on X11 and on Wayland at once, by a clock that runs 200 times as fast: nothing
// that it keeps grows. Half an hour of the show by default; three days: TAMBLOR_SOAK_HOURS=72 soak_test
#include "integration/compositor.h"
#include "integration/spied_saver.h"

#include <X11/extensions/XRes.h>

#include <chrono>
#include <cstdio>
#include <span>
#include <thread>

namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryIsOurs = false; // the sanitizer keeps what is freed
#else
constexpr bool kMemoryIsOurs = true;
#endif

constexpr int kSpeed = 200;
constexpr auto kPerStep = 30ms;
constexpr std::uint32_t kStep = kSpeed * kPerStep.count(); // milliseconds of the show

// Numbers by what they are called.
using Sample = std::map<std::string, double>;

void AddProcess(const std::string& prefix, pid_t process, Sample* sample) {
    const std::string folder = "/proc/" + std::to_string(process) + "/";
    std::ifstream status(folder + "status");
    for (std::string word; status >> word;) {
        double number = 0;
        if ((word == "RssAnon:" || word == "Threads:") && status >> number)
            (*sample)[prefix + (word == "Threads:" ? "threads" : "memory KiB")] = number;
    }
    std::error_code failed;
    (*sample)[prefix + "files"] =
        static_cast<double>(std::distance(std::filesystem::directory_iterator(folder + "fd", failed), {}));
    std::ifstream maps(folder + "maps");
    (*sample)[prefix + "mappings"] =
        static_cast<double>(std::count(std::istreambuf_iterator<char>(maps), {}, '\n'));
}

// What all other clients have at the X server.
void AddXResources(Display* display, Sample* sample) {
    const XID own = XAllocID(display);
    int clientCount = 0;
    XResClient* clients = nullptr;
    XResQueryClients(display, &clientCount, &clients);
    for (const XResClient& client : std::span(clients, static_cast<std::size_t>(clientCount))) {
        if ((own & ~static_cast<XID>(client.resource_mask)) == client.resource_base)
            continue;
        ++(*sample)["X clients"];
        int typeCount = 0;
        XResType* types = nullptr;
        XResQueryClientResources(display, client.resource_base, &typeCount, &types);
        for (const XResType& type : std::span(types, static_cast<std::size_t>(typeCount)))
            (*sample)["X resources"] += type.count;
        XFree(types);
        unsigned long bytes = 0;
        XResQueryClientPixmapBytes(display, client.resource_base, &bytes);
        (*sample)["X pixmaps KiB"] += static_cast<double>(bytes) / 1024;
    }
    XFree(clients);
}

// The saver with its spy, and what was seen of it.
class SoakedShow {
public:
    explicit SoakedShow(const char* name) : name_(name) { spy_->waitsForClock = 1; }

    const std::string& Name() const { return name_; }
    // A frame was shown that was drawn for the time that the clock has now.
    bool IsDrawn() const { return spy_->tick == SaverProcess::kStartMs + now_; }
    void Step() { saver.SetClock(now_ += kStep); }
    // False: no frame comes.
    bool Await() {
        const auto end = SteadyClock::now() + 100s;
        while (!IsDrawn() && SteadyClock::now() < end && saver.Running())
            usleep(500);
        return IsDrawn();
    }

    void Look(const Sample& others) {
        Sample sample = others;
        AddProcess("", saver.Id(), &sample);
        sample["heap KiB"] = static_cast<double>(spy_->heap / 1024);
        sample["textures"] = spy_->textures;
        sample["uploads"] = spy_->uploads;
        sample["Wayland objects"] = spy_->proxy;
        samples_.push_back(sample);
    }
    void Print(double hours) const {
        std::printf("%s, %.1f h, %u frames:", name_.c_str(), hours, spy_->frames.load());
        for (const auto& [what, number] : samples_.back())
            std::printf(" %s %.0f,", what.c_str(), number);
        std::printf("\n");
        std::fflush(stdout);
    }
    // The last third against the first one, which is past the first cycles. Of what is counted, it has no
    // more at any time; memory comes and goes with the frames that the driver has in hand, so its least
    // counts.
    void ExpectFlat() const {
        const std::size_t third = samples_.size() / 3;
        ASSERT_GT(third, 0u);
        const std::span all(samples_);
        for (const auto& [what, number] : samples_.back()) {
            const auto early = Range(all.first(third), what), late = Range(all.last(third), what);
            const bool isMemory = what.ends_with("KiB");
            if (isMemory)
                std::printf("%s, %s: %.0f to %.0f, then %.0f to %.0f\n", name_.c_str(), what.c_str(),
                            early.first, early.second, late.first, late.second);
            if (!kMemoryIsOurs && (isMemory || what.ends_with("mappings")))
                continue;
            const double before = isMemory ? early.first : early.second;
            EXPECT_LE(isMemory ? late.first : late.second, before + RoomOf(what)) << name_ << ": " << what;
        }
        EXPECT_GT(samples_.back().at("textures"), 0) << name_ << ": the spy sees nothing";
    }

    SpiedSaver saver;

private:
    // For what allocators and drivers keep for later: they come to their most within hours, not minutes. A
    // driver takes a buffer more when the compositor has all others.
    static double RoomOf(const std::string& what) {
        constexpr std::pair<const char*, double> kRooms[] = {
            {"heap KiB", 2048}, {"memory KiB", 4096}, {"mappings", 32}, {"Wayland objects", 2}};
        for (const auto& [name, room] : kRooms)
            if (what.ends_with(name))
                return room;
        return 0;
    }
    static std::pair<double, double> Range(std::span<const Sample> samples, const std::string& what) {
        std::pair<double, double> range = {samples.front().at(what), samples.front().at(what)};
        for (const Sample& sample : samples) {
            range.first = std::min(range.first, sample.at(what));
            range.second = std::max(range.second, sample.at(what));
        }
        return range;
    }

    const std::string name_;
    PlatformSpy* const spy_ = saver.spy;
    std::uint32_t now_ = 0; // on its clock, since its start
    std::vector<Sample> samples_;
};

TEST(Soak, LeavesMemoryAndHandlesAsTheyWere) {
    const char* const wanted = std::getenv("TAMBLOR_SOAK_HOURS");
    const double hours = wanted != nullptr ? std::atof(wanted) : 0.5;
    ASSERT_GT(hours, 0);
    VirtualDisplay display(200, 150);
    ASSERT_NE(display.connection, nullptr);
    XSetScreenSaver(display.connection, 0, 0, DontPreferBlanking, DontAllowExposures); // the server's own
    Compositor compositor({{200, 150}}, "xwayland disable");
    ASSERT_TRUE(compositor.ready) << compositor.server.folder.Read("errors");
    SoakedShow onX11("X11"), onWayland("Wayland");
    const std::vector<SoakedShow*> shows = {&onX11, &onWayland};
    compositor.server.Offer(&onWayland.saver.environment);
    onX11.saver.environment["DISPLAY"] = display.Name();
    onX11.saver.Start({"/s"});
    onWayland.saver.Start({"/s"});
    const auto look = [&] {
        Sample server, atCompositor;
        AddXResources(display.connection, &server);
        onX11.Look(server);
        compositor.Pump();
        AddProcess("the compositor's ", compositor.server.program.Id(), &atCompositor);
        onWayland.Look(atCompositor);
    };

    constexpr int kLooks = 60, kLinesPrinted = 6;
    constexpr int kBefore = 160; // steps, as fast as they go: the cube comes, the driver takes its buffers
    constexpr double kMsPerHour = 3600000;
    const int steps = static_cast<int>(hours * kMsPerHour / kStep) / kLooks * kLooks;
    ASSERT_GT(steps, 0) << "too short";
    const auto begun = SteadyClock::now();
    auto due = begun;
    for (int step = 1 - kBefore; step <= steps; ++step) {
        if (step > 0) {
            due = std::max(due + kPerStep, SteadyClock::now() - 1s); // a slow spell is made up for
            std::this_thread::sleep_until(due);
        }
        for (SoakedShow* show : shows) {
            ASSERT_TRUE(show->Await()) << show->Name() << ": " << show->saver.Errors();
            show->Step();
        }
        if (step <= 0 || step % (steps / kLooks) != 0)
            continue;
        look();
        for (const SoakedShow* show : shows)
            if (step % (steps / kLinesPrinted) == 0)
                show->Print(hours * step / steps);
    }
    const double took = std::chrono::duration<double>(SteadyClock::now() - begun).count();
    std::printf("%.1f hours in %.1f minutes, %.0f times their speed\n", hours, took / 60,
                hours * 3600 / took);

    for (SoakedShow* show : shows) {
        ASSERT_TRUE(show->Await());
        show->ExpectFlat();
    }
    display.PressKey(XK_space);
    compositor.PressKey(KEY_SPACE);
    for (SoakedShow* show : shows) {
        EXPECT_EQ(show->saver.WaitForExit(), 0) << show->Name();
        EXPECT_EQ(show->saver.Errors(), "") << show->Name();
    }
}

} // namespace
