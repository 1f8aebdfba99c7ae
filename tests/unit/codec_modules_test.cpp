// The modules of the codec, scripted.
#include "fakes/fake_win32.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "unit/trace_lines.h"

#include <tuple>

namespace {

TEST(ScriptedCodec, ThatIsNotAllThereIsTracedAndGivenBack) {
    using Lines = std::vector<std::string>;
    static int shutDowns;
    std::map<std::string, FARPROC>
        some; // of the entry points; it bears to be shut down, ilInit is not called
    for (const char* name : {"ilInit", "ilShutDown", "ilEnable", "ilDisable", "ilSetInteger"})
        some[name] = FakeEntry(+[] { ++shutDowns; });
    const std::string il = "LoadLibraryA(DevIL)", ilu = "LoadLibraryA(ilu)", free = "FreeLibrary(module)",
                      no = "#ERROR: failed to load ";
    const std::tuple<decltype(fakeWin32.modules), Lines, Lines> kCases[] = {
        {{}, {il}, {"loading devil", no + "devil.dll"}},
        {{{"DevIL", {}}}, {il, ilu, free}, {"loading devil", no + "ilu.dll"}},
        {{{"DevIL", some}, {"ilu", {}}}, {il, ilu, free, free}, {"loading devil"}}};
    const TempFolder folder;
    for (auto [modules, calls, lines] : kCases) {
        const TraceLines trace(folder);
        ResetFakeWin32();
        fakeWin32.modules = modules;
        shutDowns = 0;
        EXPECT_FALSE(fxLoadDevil() || fxDevilLoaded());
        EXPECT_EQ(TakeFakeCalls(), calls);
        lines.insert(lines.end(), {no + "devil libraries", "unload devil"});
        EXPECT_EQ(trace.Lines(), lines);
        EXPECT_EQ(shutDowns, calls.size() == 4 ? 1 : 0);
        EXPECT_TRUE(fxCodec.ilInit == nullptr && fxCodec.ilShutDown == nullptr);
        EXPECT_FALSE(FXCanvas().CreateFromPict(folder.Write("a", "picture").c_str()));
    }
}

} // namespace
