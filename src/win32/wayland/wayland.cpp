#include "win32/wayland/wayland.h"

// There are no windows of other programs here: none that the show could lie in, and none to be asked about.
const WindowSystem kWayland = {
    .name = "wayland",
    .Open = [] { return wayland::Connection() != nullptr; },
    .FindHindrance = wayland::FindHindrance,
    .EnterWindow = [](HWND, bool) { return 0; },
    .EnterLayer = wayland::EnterLayer,
    .CountShows = wayland::CountShows,
    .ChooseShow = wayland::ChooseShow,
    .FindScreen = wayland::FindScreen,
    .FindPointer = wayland::FindPointer,
    .PhotographDesktop = wayland::PhotographDesktop,
    .CreateWindow = wayland::CreateWindow,
    .ShowWindow = wayland::ShowWindow,
    .DestroyWindow = wayland::DestroyWindow,
    .FindWindow = wayland::FindWindow,
    .SetParent = [](HWND) -> HWND { return nullptr; },
    .PlaceWindow = [](const Place&) { return true; }, // it always fills the screen
    .HideCursor = [] {},                              // none is ever shown over it
    .ShowBlack = wayland::ShowBlack,
    .ReadEvents = wayland::ReadEvents,
    .WaitForEvents = wayland::WaitForEvents,
    .WatchIdle = wayland::WatchIdle,
    .UnwatchIdle = wayland::UnwatchIdle,
    .ShowIsUnwanted = [] { return false; }, // the compositor minds those who want the screen to stay on
    .OpenGl = wayland::OpenGl,
    .FindGlFunction = wayland::FindGlFunction,
};
