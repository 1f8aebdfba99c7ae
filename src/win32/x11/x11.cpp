#include "win32/x11/x11.h"

const WindowSystem kX11 = {
    .name = "x11",
    .Open = [] { return x11::Connection() != nullptr; },
    .EnterWindow = x11::EnterWindow,
    .CountShows = x11::CountShows,
    .ChooseShow = x11::ChooseShow,
    .FindScreen = x11::FindScreen,
    .FindPointer = x11::FindPointer,
    .PhotographDesktop = x11::PhotographDesktop,
    .CreateWindow = x11::CreateWindow,
    .ShowWindow = x11::ShowWindow,
    .DestroyWindow = x11::DestroyWindow,
    .FindWindow = x11::FindWindow,
    .SetParent = x11::SetParent,
    .PlaceWindow = x11::PlaceWindow,
    .HideCursor = x11::HideCursor,
    .ShowBlack = x11::ShowBlack,
    .ReadEvents = x11::ReadEvents,
    .WaitForEvents = x11::WaitForEvents,
    .OpenGl = x11::OpenGl,
    .FindGlFunction = x11::FindGlFunction,
};
