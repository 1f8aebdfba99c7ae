#include "integration/program.h"

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>

Program::~Program() {
    Kill();
}

void Program::Kill() {
    Signal(SIGKILL);
    WaitForExit();
}

void Program::Start(std::vector<std::string> words, const Environment& environment, const std::string& folder,
                    const std::string& errors) {
    std::vector<std::string> settings;
    for (const auto& [name, value] : environment)
        settings.push_back(name + "=" + value);
    const auto pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> all;
        for (std::string& text : texts)
            all.push_back(text.data());
        all.push_back(nullptr);
        return all;
    };
    const std::vector<char*> argv = pointers(words), envp = pointers(settings);
    pid_ = fork();
    if (pid_ != 0)
        return;
    const int nothing = open("/dev/null", O_RDWR);
    dup2(nothing, STDIN_FILENO);
    dup2(nothing, STDOUT_FILENO);
    dup2(open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    if (chdir(folder.c_str()) == 0)
        execve(argv[0], argv.data(), envp.data());
    _exit(127);
}

bool Program::Running() {
    if (pid_ > 0 && waitpid(pid_, &status_, WNOHANG) == pid_)
        pid_ = -1;
    return pid_ > 0;
}

int Program::WaitForExit() {
    if (!Eventually([this] { return !Running(); }))
        return -1;
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : -2;
}

void Program::Signal(int number) const {
    if (pid_ > 0)
        kill(pid_, number);
}
