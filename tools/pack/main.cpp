// tamb-pack: builds packages for the show, looks into them, and takes them apart.
#include "pack/command.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace {

const Command* const kCommands[] = {&kListCommand,  &kVerifyCommand, &kExtractCommand,
                                    &kBuildCommand, &kNamesCommand,  &kDumpCommand};

void localPrintHelp() {
    std::puts("tamb-pack: builds packages for the show, looks into them, and takes them apart.\n\n"
              "usage: tamb-pack COMMAND ...\n");
    for (const Command* command : kCommands)
        std::printf("  %-8s  %s\n", command->name, command->summary);
    std::puts("\ntamb-pack COMMAND --help says everything about a command; tamb-pack --help is this text.\n"
              "Exit status: 0 when all is well, 1 when it is not, 2 when the command line makes no sense.\n"
              "How to make a show of your own: docs/making-a-show.md; the formats: docs/formats.md.");
}

bool localIsHelp(const std::string& word) {
    return word == "--help" || word == "-h";
}

// False with a line in `error` that names the option and what it takes.
bool localParseArguments(std::span<const std::string> line, std::span<const OptionRule> rules,
                         Arguments* arguments, std::string* error) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (!line[i].starts_with("--")) {
            arguments->words.push_back(line[i]);
            continue;
        }
        const auto rule = std::ranges::find_if(rules, [&](const OptionRule& r) { return line[i] == r.name; });
        if (rule == rules.end()) {
            *error = "unknown option '" + line[i] + "'";
            return false;
        }
        if (rule->takes != nullptr && i + 1 == line.size()) {
            *error = line[i] + " takes " + rule->takes;
            return false;
        }
        arguments->options[rule->name] = rule->takes != nullptr ? line[++i] : "";
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN); // a file that may grow no more is a failed write
#endif
    const std::vector<std::string> line(argv + 1, argv + argc);
    if (line.empty() || localIsHelp(line[0])) {
        localPrintHelp();
        return line.empty() ? kExitUsage : kExitGood;
    }
    const auto* found = std::ranges::find_if(kCommands, [&](const Command* c) { return line[0] == c->name; });
    if (found == std::end(kCommands)) {
        std::fprintf(stderr, "tamb-pack: there is no command '%s' (see tamb-pack --help)\n", line[0].c_str());
        return kExitUsage;
    }
    const Command& command = **found;
    const std::span rest(line.begin() + 1, line.end());
    if (std::ranges::any_of(rest, localIsHelp)) {
        std::printf("tamb-pack %s: %s\n\n%s", command.name, command.summary, command.help);
        return kExitGood;
    }
    Arguments arguments;
    std::string error;
    if (!localParseArguments(rest, command.options, &arguments, &error))
        return FailUsage(error, command.name);
    const std::size_t words = arguments.words.size();
    if (words < command.leastWords || words > command.mostWords)
        return FailUsage(words < command.leastWords ? "something is missing" : "that is too much",
                         command.name);
    return command.run(arguments);
}
