// Any lines as the words of the command line, by the rule of Linux and by the classic one, which agree on
// what is left for the latter.
#include "host/saver_mode.h"
#include "win32/linux/daemon_window.h"
#include "win32/linux/words.h"
#include "work_file.h"

#include <sstream>

namespace {

SaverMode localModeOf(char letter) {
    return letter == 's'   ? SaverMode::Saver
           : letter == 'p' ? SaverMode::Preview
           : letter == 'a' ? SaverMode::ChangePassword
                           : SaverMode::Configure;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    std::vector<std::string> all;
    std::istringstream lines{std::string(AsText(bytes, size))};
    for (std::string line; std::getline(lines, line);)
        all.push_back(line);
    const Words words = ReadWords(all);
    Expect((words.task == Task::Wrong) == !words.problem.empty());
    Expect(words.idleMinutes == 0 || (words.idleMinutes >= 0.01 && words.idleMinutes <= 1440));
    Expect(words.task != Task::Wrong || words.rest.empty());

    std::string classic;
    for (const std::string& word : words.rest)
        classic += word + " ";
    const SaverCommand command = ParseSaverCommandLine(classic);
    Expect(command.mode == localModeOf(ClassicSwitch(words)));
    Expect(!command.hasWindow || command.mode == SaverMode::Preview ||
           command.mode == SaverMode::ChangePassword);
    for (const std::string& word : all) {
        const std::uint32_t number = WindowNumber(word);
        Expect(number == 0 || WindowNumber(std::to_string(number)) == number);
    }
    return 0;
}
