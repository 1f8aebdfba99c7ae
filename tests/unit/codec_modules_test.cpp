// The modules of the codec, scripted.
#include "fakes/fake_win32.h"
#include "image/codec.h"

#include <gtest/gtest.h>

namespace {

TEST(ScriptedCodec, GivesBackTheModuleThatItGot) {
    using Calls = std::vector<std::string>;
    ResetFakeWin32();
    fakeWin32.modules = {{"DevIL", {}}};
    EXPECT_FALSE(fxLoadDevil());
    EXPECT_EQ(TakeFakeCalls(), (Calls{"LoadLibraryA(DevIL)", "LoadLibraryA(ilu)", "FreeLibrary(module)"}));

    // All but one entry point: both modules are given back, and the library shut down, which it bears.
    static int shutDowns;
    shutDowns = 0;
    fakeWin32.modules = {{"DevIL", {}}, {"ilu", {}}};
    for (const char* name : {"ilInit", "ilShutDown", "ilEnable", "ilDisable", "ilSetInteger"})
        fakeWin32.modules["DevIL"][name] = FakeEntry(+[] { ++shutDowns; });
    EXPECT_FALSE(fxLoadDevil());
    EXPECT_EQ(TakeFakeCalls(), (Calls{"LoadLibraryA(DevIL)", "LoadLibraryA(ilu)", "FreeLibrary(module)",
                                      "FreeLibrary(module)"}));
    EXPECT_EQ(shutDowns, 1) << "ilInit is not called";
    EXPECT_FALSE(fxDevilLoaded());
    EXPECT_TRUE(fxCodec.ilInit == nullptr && fxCodec.ilShutDown == nullptr);
}

} // namespace
