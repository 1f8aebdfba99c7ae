// The show as the saver builds and draws it, but that nothing is seen: OpenGL is the recorder, and the
// desktop a pixel. The clock is the test's, and the folder with the package the current one.
#pragma once

#include "fakes/fake_win32.h"
#include "host/configuration.h"
#include "platform/clock.h"
#include "platform/trace.h"
#include "scene/show.h"
#include "unit/scene_parts.h"

#include <cmath>

// A show of pixels and triangles, with a morph of a second that carries the desktop.
inline std::vector<TestEntry> SmallShow(const TempFolder& folder) {
    FXAnim morph;
    for (int i = 0; i < 3; ++i) {
        morph.models.Push(NewModel({TriangleAt(static_cast<float>(i * i))}, "Material001"));
        morph.frameNames.Push("");
        morph.frameTimes.Push(500);
    }
    EXPECT_TRUE(morph.Save(folder.File("morph").c_str()));
    std::vector<TestEntry> entries;
    for (const int id : {0, 1, 5, 18, 19, 20, 21, 73, 74})
        entries.push_back({id, kTga, Tga(1, 1, {0xFFFFFFFFu})});
    for (const int id : {4, 11, 13, 15, 17})
        entries.push_back({id, kRaw, TriangleModel(folder)});
    entries.push_back({72, kRaw, folder.Read("morph")});
    return entries;
}

class WholeShow {
public:
    // Quiet: nothing is written down.
    explicit WholeShow(const TempFolder& folder, bool isQuiet = true) {
        ResetFakeWin32();
        GLRecorder::Reset();
        GLRecorder::SetNullMode(isQuiet);
        fakeWin32.isQuiet = isQuiet;
        fakeWin32.desktop = {kDesktop, 4, 1, 1};
        fakeWin32.screenWidth = fakeWin32.screenHeight = 1;
        fxSetTickSource([] { return ticks_; });
        std::snprintf(orinPath, sizeof orinPath, "%s", folder.Path().c_str());
    }
    ~WholeShow() {
        TakeDown();
        fxSetTickSource(nullptr);
        orinPath[0] = '\0';
        ResetFakeWin32();
        std::filesystem::current_path(before_);
    }
    WholeShow(const WholeShow&) = delete;
    WholeShow& operator=(const WholeShow&) = delete;

    void Build(double time, bool preview = false) {
        SetClock(time);
        BuildScene(kFakeWindow, preview);
    }
    void Draw(double time) {
        SetClock(time);
        show::gr.SetAct(true);
        show::sc.OnRender(&show::gr, fxGetTime());
        show::gr.SetAct(false);
    }
    void TakeDown() {
        DestroyScene();
        fxCloseTraces();
    }
    static void SetClock(double time) {
        ticks_ = static_cast<std::uint32_t>(static_cast<std::uint64_t>(std::llround(time * 1000)));
    }

private:
    static constexpr unsigned char kDesktop[4] = {0x33, 0x22, 0x11, 0};
    static inline std::uint32_t ticks_ = 0;
    const std::filesystem::path before_ = std::filesystem::current_path();
};
