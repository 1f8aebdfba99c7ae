// Another process, with an environment of its own; killed when this goes.
#pragma once

#include "unit/temp_folder.h"

#include <csignal>
#include <fcntl.h>
#include <map>
#include <sys/wait.h>

using Environment = std::map<std::string, std::string>;

// Asks until the answer is yes. False when it is still no after a while that is generous for a busy machine
// under sanitizers: a passing test never waits that long.
template <class Question> bool Eventually(Question question) {
    constexpr int kPatienceMs = 100000;
    constexpr int kPollMs = 10;
    for (int waited = 0; waited < kPatienceMs; waited += kPollMs) {
        if (question())
            return true;
        usleep(kPollMs * 1000);
    }
    return false;
}

class Program {
public:
    Program() = default;
    ~Program() { Kill(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // The program by its whole path. It starts in that folder, and has files for what it writes.
    void Start(std::vector<std::string> words, const Environment& environment, const std::string& folder,
               const std::string& errors, const std::string& output = "/dev/null") {
        std::vector<std::string> settings;
        for (const auto& [name, value] : environment)
            settings.push_back(name + "=" + value);
        const std::vector<char*> argv = Pointers(words), envp = Pointers(settings);
        pid_ = fork();
        if (pid_ != 0)
            return;
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        dup2(open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        if (chdir(folder.c_str()) == 0)
            execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    bool Running() {
        if (pid_ > 0 && waitpid(pid_, &status_, WNOHANG) == pid_)
            pid_ = -1;
        return pid_ > 0;
    }
    // The exit code, or -1 when it does not end, or -2 when a signal ended it.
    int WaitForExit() {
        const bool ended = Eventually([this] { return !Running(); });
        return !ended ? -1 : WIFEXITED(status_) ? WEXITSTATUS(status_) : -2;
    }
    // Of a program that has ended: the signal that ended it, or 0.
    int EndSignal() const { return WIFSIGNALED(status_) ? WTERMSIG(status_) : 0; }
    pid_t Id() const { return pid_; } // -1: it does not run
    // The processes that it has started and that still run, the first one first.
    std::vector<pid_t> Children() const {
        const std::string id = std::to_string(pid_);
        std::ifstream file("/proc/" + id + "/task/" + id + "/children");
        return {std::istream_iterator<pid_t>(file), {}};
    }
    void Signal(int number) const {
        if (pid_ > 0)
            kill(pid_, number);
    }
    int End(int signal) {
        Signal(signal);
        return WaitForExit();
    }
    void Kill() { End(SIGKILL); }

private:
    static std::vector<char*> Pointers(std::vector<std::string>& texts) {
        std::vector<char*> all;
        for (std::string& text : texts)
            all.push_back(text.data());
        all.push_back(nullptr);
        return all;
    }

    int pid_ = -1;
    int status_ = -1;
};

// Gives the exit code, as Program has it.
inline int RunProgram(const std::vector<std::string>& words, const Environment& environment,
                      const std::string& folder = "/", const std::string& errors = "/dev/null") {
    Program program;
    program.Start(words, environment, folder, errors);
    return program.WaitForExit();
}
