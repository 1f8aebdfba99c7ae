// A Wayland compositor of the test's own: sway, on outputs that are nowhere. A client of it shows a known
// picture on each output, plays the user, and is the program that lies below the show.
#pragma once

#include "integration/virtual_display.h"

#include <wayland-client.h>

#include "viewporter-client-protocol.h"
#include "virtual-input-client-protocol.h"
#include "xdg-shell-client-protocol.h"

#include <deque>
#include <linux/input-event-codes.h>
#include <sstream>
#include <sys/mman.h>

// With a folder and a socket of its own. Compositors do not run as root.
class WaylandServer {
public:
    void Start(std::vector<std::string> words, Environment environment) {
        constexpr unsigned kNobody = 65534;
        const std::string number = std::to_string(kNobody);
        if (getuid() == 0 && chown(folder.Path().c_str(), kNobody, kNobody) == 0)
            words.insert(words.begin(),
                         {"/usr/bin/setpriv", "--reuid", number, "--regid", number, "--clear-groups"});
        environment["HOME"] = environment["XDG_RUNTIME_DIR"] = folder.Path();
        environment["PATH"] = "/usr/bin:/bin";
        program.Start(words, environment, "/", folder.File("errors"));
    }
    bool Listens() {
        return Eventually([this] { return std::filesystem::exists(Socket()) || !program.Running(); }) &&
               program.Running();
    }
    std::string Socket() const { return folder.File("wayland-1"); }
    void Offer(Environment* environment) const {
        (*environment)["WAYLAND_DISPLAY"] = Socket();
        (*environment)["XDG_RUNTIME_DIR"] = folder.Path();
    }

    const TempFolder folder;
    Program program;
};

class Compositor {
public:
    struct Output {
        int width = 320, height = 240; // in its own pixels, as it is seen: not turned
        const char* settings = "scale 1";
    };

    Compositor(const std::vector<Output>& outputs, const std::string& settings) {
        std::string config = settings + "\ndefault_border none\nfocus_follows_mouse no\n";
        for (const Output& output : outputs) {
            desktops_.push_back({.of = this, .output = output});
            config += Setting(Count() - 1) + "\n";
        }
        // Without the way past composing, which on such outputs leaves pictures standing that are over.
        server.Start({SWAY_EXE, "-D", "noscanout", "-c", server.folder.Write("config", config)},
                     {{"SWAYSOCK", server.folder.File("ipc")},
                      {"WLR_BACKENDS", "headless"},
                      {"WLR_RENDERER", "pixman"},
                      {"WLR_LIBINPUT_NO_DEVICES", "1"},
                      {"WLR_HEADLESS_OUTPUTS", std::to_string(Count())}});
        ready = server.Listens() && Connect() && WaitForDesktops();
    }
    ~Compositor() {
        for (wl_proxy* proxy : proxies_)
            wl_proxy_destroy(proxy);
        if (connection_ != nullptr)
            wl_display_disconnect(connection_);
    }
    Compositor(const Compositor&) = delete;
    Compositor& operator=(const Compositor&) = delete;

    int Count() const { return static_cast<int>(desktops_.size()); }
    // As it was when it was last waited for.
    const ScreenPicture& Desktop(int number = 0) const { return At(number).photograph; }
    // What the output shows, by a program of the user's.
    ScreenPicture Photograph(int number = 0) const {
        ScreenPicture picture;
        if (!Run({GRIM_EXE, "-t", "ppm", "-o", Name(number), server.folder.File("picture")}))
            return picture;
        std::istringstream file(server.folder.Read("picture"));
        std::string word; // kind, width, height, most
        file >> word >> picture.width >> word >> word;
        file.get();
        for (unsigned char pixel[3]; file.read(reinterpret_cast<char*>(pixel), 3);)
            picture.pixels.push_back(std::uint32_t{pixel[0]} << 16 | std::uint32_t{pixel[1]} << 8 | pixel[2]);
        return picture;
    }
    bool WaitForDesktops() {
        constexpr std::size_t kCursor = 1600; // pixels, at twice the size
        return Eventually([this] {
            bool all = Pump(); // the windows follow their outputs
            for (int i = 0; i < Count(); ++i) {
                At(i).photograph = Photograph(i);
                all = all && Difference(Desktop(i), DesktopPicture(At(i).output.width, At(i).output.height)) <
                                 kCursor;
            }
            return all;
        });
    }
    bool WaitForBlack(int number) {
        return Eventually([&] { return Photograph(number).IsBlack(); });
    }

    bool Command(const std::string& command) { // as the user says it to sway
        return Run({SWAYMSG_EXE, "-s", server.folder.File("ipc"), command}) && Pump();
    }
    bool ChangeOutput(int number, const Output& output) {
        At(number).output = output;
        return Command(Setting(number));
    }
    void PressKey(std::uint32_t key) {
        TurnKey(key, true);
        TurnKey(key, false);
    }
    void TurnKey(std::uint32_t key, bool down) {
        zwp_virtual_keyboard_v1_key(keyboard_, ++time_, key, down);
        Pump();
    }
    void MovePointerBy(int dx, int dy) {
        zwlr_virtual_pointer_v1_motion(pointer_, ++time_, wl_fixed_from_int(dx), wl_fixed_from_int(dy));
        zwlr_virtual_pointer_v1_frame(pointer_);
        Pump();
    }
    void ClickButton(std::uint32_t button) {
        for (const bool down : {true, false}) {
            zwlr_virtual_pointer_v1_button(pointer_, ++time_, button, down);
            zwlr_virtual_pointer_v1_frame(pointer_);
            Pump();
        }
    }
    // Reads what has come for the windows below. False: the compositor is gone.
    bool Pump() { return wl_display_roundtrip(connection_) >= 0; }
    bool WaitForFocus() {
        return Eventually([this] { return Pump() && focused; });
    }

    WaylandServer server;
    bool ready = false;
    bool focused = false;             // a window below has the keyboard
    std::vector<std::uint32_t> typed; // into it

private:
    struct Backdrop { // a window that is an output's desktop
        Compositor* of;
        Output output;
        ScreenPicture photograph = {};
        wl_surface* surface = nullptr;
        wp_viewport* viewport = nullptr;
    };

    Backdrop& At(int number) { return desktops_[static_cast<std::size_t>(number)]; }
    const Backdrop& At(int number) const { return desktops_[static_cast<std::size_t>(number)]; }
    static std::string Name(int number) { return "HEADLESS-" + std::to_string(number + 1); }
    std::string Setting(int number) const {
        int sides[] = {At(number).output.width, At(number).output.height};
        if (std::strstr(At(number).output.settings, "90") != nullptr)
            std::swap(sides[0], sides[1]);
        return "output " + Name(number) + " mode --custom " + std::to_string(sides[0]) + "x" +
               std::to_string(sides[1]) + "@60Hz " + At(number).output.settings;
    }
    bool Run(const std::vector<std::string>& words) const {
        Environment environment;
        server.Offer(&environment);
        return RunProgram(words, environment) == 0;
    }
    template <class T> T* Keep(T* object) { // until the connection goes
        proxies_.push_back(reinterpret_cast<wl_proxy*>(object));
        return object;
    }
    static int MemoryFile(const void* bytes, std::size_t size) {
        const int file = memfd_create("test", MFD_CLOEXEC);
        return write(file, bytes, size) == static_cast<ssize_t>(size) ? file : -1;
    }

    bool Connect() {
        // Its socket is there before it listens, and it listens before it has outputs.
        if (!Eventually([this] { return (connection_ = wl_display_connect(server.Socket().c_str())); }))
            return false;
        wl_registry_add_listener(Keep(wl_display_get_registry(connection_)), &kRegistry, this);
        if (!Eventually([this] { return !Pump() || std::ssize(outputs_) >= Count(); }) ||
            std::ssize(outputs_) != Count() || keyboards_ == nullptr || pointers_ == nullptr)
            return false;
        keyboard_ = Keep(zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards_, seat_));
        constexpr char kKeymap[] =
            "xkb_keymap { xkb_keycodes { include \"evdev\" }; xkb_types { include \"complete\" }; "
            "xkb_compat { include \"complete\" }; xkb_symbols { include \"pc+us\" }; };";
        const int file = MemoryFile(kKeymap, sizeof kKeymap);
        zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file, sizeof kKeymap);
        close(file);
        pointer_ = Keep(zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers_, seat_));
        wl_keyboard_add_listener(Keep(wl_seat_get_keyboard(seat_)), &kKeyboard, this); // there is one now
        for (std::size_t i = 0; i < outputs_.size(); ++i)
            Show(&desktops_[i], outputs_[i]);
        return Pump();
    }
    void Show(Backdrop* desktop, wl_output* output) {
        desktop->surface = Keep(wl_compositor_create_surface(compositor_));
        desktop->viewport = Keep(wp_viewporter_get_viewport(viewporter_, desktop->surface));
        xdg_surface* surface = Keep(xdg_wm_base_get_xdg_surface(shell_, desktop->surface));
        xdg_surface_add_listener(surface, &kSurface, desktop);
        xdg_toplevel* window = Keep(xdg_surface_get_toplevel(surface));
        xdg_toplevel_add_listener(window, &kWindow, desktop);
        xdg_toplevel_set_fullscreen(window, output);
        wl_surface_commit(desktop->surface);
    }
    static void OnConfigure(void* data, xdg_surface* surface, std::uint32_t serial) {
        Backdrop& desktop = *static_cast<Backdrop*>(data);
        const int width = desktop.output.width, height = desktop.output.height;
        const std::vector<std::uint32_t> pixels = DesktopPicture(width, height).pixels;
        const int size = width * height * 4, file = MemoryFile(pixels.data(), 4 * pixels.size());
        wl_shm_pool* pool = wl_shm_create_pool(desktop.of->shm_, file, size);
        wl_buffer* buffer = desktop.of->Keep(
            wl_shm_pool_create_buffer(pool, 0, width, height, 4 * width, WL_SHM_FORMAT_XRGB8888));
        wl_shm_pool_destroy(pool);
        close(file);
        xdg_surface_ack_configure(surface, serial);
        wl_surface_attach(desktop.surface, buffer, 0, 0);
        wl_surface_damage(desktop.surface, 0, 0, INT32_MAX, INT32_MAX);
        wl_surface_commit(desktop.surface);
    }
    static constexpr xdg_surface_listener kSurface = {OnConfigure};
    static constexpr xdg_toplevel_listener kWindow = {
        [](void* data, xdg_toplevel*, int width, int height, wl_array*) {
            if (width > 0) // as the compositor counts
                wp_viewport_set_destination(static_cast<Backdrop*>(data)->viewport, width, height);
        },
        [](void*, xdg_toplevel*) {}, nullptr, nullptr};

    static Compositor& Self(void* self) { return *static_cast<Compositor*>(self); }
    static void OnGlobal(void* self, wl_registry* registry, std::uint32_t name, const char* interface,
                         std::uint32_t) {
        const auto bind = [&]<class T>(T** object, const wl_interface& wanted) {
            if (std::strcmp(interface, wanted.name) == 0)
                *object = Self(self).Keep(static_cast<T*>(wl_registry_bind(registry, name, &wanted, 1)));
        };
        bind(&Self(self).compositor_, wl_compositor_interface);
        bind(&Self(self).shm_, wl_shm_interface);
        bind(&Self(self).seat_, wl_seat_interface);
        bind(&Self(self).shell_, xdg_wm_base_interface);
        bind(&Self(self).viewporter_, wp_viewporter_interface);
        bind(&Self(self).keyboards_, zwp_virtual_keyboard_manager_v1_interface);
        bind(&Self(self).pointers_, zwlr_virtual_pointer_manager_v1_interface);
        wl_output* output = nullptr;
        bind(&output, wl_output_interface);
        if (output != nullptr)
            Self(self).outputs_.push_back(output);
    }
    static constexpr wl_registry_listener kRegistry = {OnGlobal, [](void*, wl_registry*, std::uint32_t) {}};
    static constexpr wl_keyboard_listener kKeyboard = {
        [](void*, wl_keyboard*, std::uint32_t, int file, std::uint32_t) { close(file); },
        [](void* self, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) { Self(self).focused = true; },
        [](void* self, wl_keyboard*, std::uint32_t, wl_surface*) { Self(self).focused = false; },
        [](void* self, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t key, std::uint32_t state) {
            if (state == WL_KEYBOARD_KEY_STATE_PRESSED)
                Self(self).typed.push_back(key);
        },
        [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
        nullptr};

    std::deque<Backdrop> desktops_; // their windows know where they are
    wl_display* connection_ = nullptr;
    std::vector<wl_proxy*> proxies_;
    std::vector<wl_output*> outputs_;
    wl_compositor* compositor_ = nullptr;
    wl_shm* shm_ = nullptr;
    wl_seat* seat_ = nullptr;
    xdg_wm_base* shell_ = nullptr;
    wp_viewporter* viewporter_ = nullptr;
    zwp_virtual_keyboard_manager_v1* keyboards_ = nullptr;
    zwlr_virtual_pointer_manager_v1* pointers_ = nullptr;
    zwp_virtual_keyboard_v1* keyboard_ = nullptr;
    zwlr_virtual_pointer_v1* pointer_ = nullptr;
    std::uint32_t time_ = 0;
};

// A saver, plain or of another kind, and a compositor.
template <class Saver> class WaylandShowOf : public testing::Test {
protected:
    explicit WaylandShowOf(const std::vector<Compositor::Output>& outputs = {{}},
                           const std::string& settings = "xwayland disable")
        : compositor(outputs, settings) {
        compositor.server.Offer(&saver.environment);
    }
    void SetUp() override { ASSERT_TRUE(compositor.ready) << compositor.server.folder.Read("errors"); }

    bool TakesTheKeyboard() {
        return Eventually(
                   [this] { return (compositor.Pump() && !compositor.focused) || !saver.Running(); }) &&
               saver.Running();
    }
    void ExpectAKeyEndsIt(std::uint32_t key = KEY_SPACE) {
        compositor.PressKey(key);
        EXPECT_EQ(saver.WaitForExit(), 0) << saver.Errors();
        EXPECT_TRUE(compositor.WaitForFocus());
    }

    Compositor compositor;
    Saver saver;
};
