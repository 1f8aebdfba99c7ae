#include "render/render_environment.h"

#include "platform/clock.h"
#include "platform/threads.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr double kFirstFrameDelay = 0.1; // seconds
constexpr double kFramePause = 0.001;
constexpr double kDestroyPatience = 0.5;

void localRunLoop(void* env) {
    static_cast<FXEnv*>(env)->RenderLoop();
}

} // namespace

FXEnv::FXEnv() {
    defaultMaterial.SetDefDiffuse(1.0f);
    defaultMatlib.AddMaterial(&defaultMaterial);
    mutex = fxCreateMutex();
}

FXEnv::~FXEnv() {
    FXEnv::Destroy();
}

// NOLINTBEGIN(clang-analyzer-optin.cplusplus.VirtualCall): a device's own while there is one
void FXEnv::Destroy() {
    StopLoop(kDestroyPatience);
    Lock(true);
    stop = true;
    matlibs.DestroyBuf();
    defaultMatlib.Destroy();
    defaultMaterial.Destroy();
    Lock(false);
    fxDestroyMutex(mutex);
    mutex = nullptr;
    stop = false;
}
// NOLINTEND(clang-analyzer-optin.cplusplus.VirtualCall)

bool FXEnv::StartLoop(PRender* target) {
    if (!CanDraw())
        return false;
    stop = false;
    render = target;
    if (thread != nullptr && fxWaitThread(thread, 0.0)) { // a loop that has ended by itself
        fxDestroyThread(thread);
        thread = nullptr;
    }
    if (thread == nullptr)
        thread = fxCreateThread(localRunLoop, this);
    return thread != nullptr;
}

void FXEnv::StopLoop(double timeout) {
    stop = true;
    if (thread != nullptr) {
        const bool ended = fxWaitThread(thread, timeout);
        fxDestroyThread(thread);
        thread = nullptr;
        running = false;
        if (!ended)
            mutex = fxCreateMutex(); // the old one may be locked still
    }
    render = nullptr;
}

void FXEnv::Lock(bool on) {
    if (mutex == nullptr)
        return;
    if (on)
        fxLock(mutex);
    else
        fxUnlock(mutex);
}

void FXEnv::RenderLoop() {
    running = true;
    fxSleep(kFirstFrameDelay);
    while (!stop) {
        const bool locking = lockEachFrame;
        if (locking)
            Lock(true);
        if (PRender* target = render) {
            SetAct(true);
            target->OnRender(this, fxGetTime());
            SetAct(false);
        }
        if (locking)
            Lock(false);
        fxSleep(kFramePause);
    }
    running = false;
}

bool FXEnv::RegisterLight(FXLight* light) {
    FXLight** const place = std::find_if(std::begin(lights), std::end(lights),
                                         [&](FXLight* l) { return l == nullptr || l == light; });
    if (place == std::end(lights))
        return false;
    *place = light;
    return true;
}

void FXEnv::UnregisterLight(FXLight* light) {
    FXLight** const place = std::find(std::begin(lights), std::end(lights), light);
    if (place != std::end(lights))
        *place = nullptr;
}

FXMatlib* FXEnv::FindShared(const char* name) const {
    for (FXMatlib* library : matlibs)
        if (library->name.Compare(name)) {
            ++library->refCount;
            return library;
        }
    return nullptr;
}

// An empty library under the name that was asked for, which loading may replace. Null without memory.
FXMatlib* FXEnv::NewShared(const char* name) {
    FXMatlib* library = matlibs.PushNew();
    if (library != nullptr) {
        library->name.Set(name);
        library->parent = &defaultMatlib;
    }
    return library;
}

FXMatlib* FXEnv::LoadMatlib(const char* name) {
    if (FXMatlib* shared = FindShared(name))
        return shared;
    FXMatlib* library = NewShared(name);
    if (library != nullptr)
        library->LoadFromMtl(name);
    return library;
}

FXMatlib* FXEnv::LoadMatlibC(FXPackage* pck, const char* name) {
    if (FXMatlib* shared = FindShared(name))
        return shared;
    FXMatlib* library = NewShared(name);
    if (library != nullptr)
        library->LoadC(pck, name);
    return library;
}

FXMatlib* FXEnv::LoadMatlibCN(FXPackage* pck, int id) {
    FXStr name;
    name.Format("%d", id);
    return LoadMatlibC(pck, name.text);
}

void FXEnv::RemoveMatlib(FXMatlib* library) {
    if (const int at = matlibs.Findpos(library); at >= 0)
        matlibs.Release(at);
}

void FXEnv::AddMaterial(FXMaterial* material) {
    defaultMatlib.AddMaterial(material);
}

void FXEnv::ApplyDefaultMaterial() {
    ApplyMaterial(&defaultMaterial);
}
