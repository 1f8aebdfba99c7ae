#include "film/video.h"

#include "base/whole_file.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// "film.mp4" is written as "film.unfinished.mp4": ffmpeg chooses the format by the ending.
std::string localUnfinishedName(const std::string& file) {
    const fs::path path(file);
    return (path.parent_path() / (path.stem().string() + ".unfinished" + path.extension().string())).string();
}

// Its standard input is the pipe's end `in`. 0, or why it does not start.
int localStart(const std::vector<std::string>& line, int in, pid_t* process) {
    std::vector<char*> words;
    words.reserve(line.size() + 1);
    for (const std::string& word : line)
        words.push_back(const_cast<char*>(word.c_str())); // posix_spawn does not write to them
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
    const int problem = posix_spawnp(process, words[0], &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return problem;
}

} // namespace

Video::~Video() {
    if (ffmpeg_ < 0)
        return;
    Wait();
    std::error_code failed;
    fs::remove(unfinished_, failed);
}

bool Video::Open(const std::string& file, int width, int height, int framesPerSecond, std::string* error) {
    file_ = file;
    unfinished_ = localUnfinishedName(file);
    signal(SIGPIPE, SIG_IGN); // an ffmpeg that goes away is a failed write
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        *error = std::string("there is no pipe to ffmpeg: ") + std::strerror(errno);
        return false;
    }
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const int problem = localStart({"ffmpeg",
                                    "-hide_banner",
                                    "-loglevel",
                                    "error",
                                    "-nostats",
                                    "-y",
                                    "-f",
                                    "rawvideo",
                                    "-pixel_format",
                                    "bgra",
                                    "-video_size",
                                    size,
                                    "-framerate",
                                    std::to_string(framesPerSecond),
                                    "-i",
                                    "-",
                                    "-vf",
                                    "pad=ceil(iw/2)*2:ceil(ih/2)*2", // what most kinds of video need
                                    "-pix_fmt",
                                    "yuv420p",
                                    "file:" + unfinished_},
                                   ends[0], &ffmpeg_);
    close(ends[0]);
    pipe_ = ends[1];
    if (problem == 0)
        return true;
    close(pipe_);
    ffmpeg_ = -1;
    *error = problem == ENOENT ? "there is no ffmpeg to make a video with (Debian: apt-get install ffmpeg); "
                                 "--frames writes the frames without it"
                               : std::string("ffmpeg does not start: ") + std::strerror(problem);
    return false;
}

bool Video::Add(const Picture& frame, std::string* error) {
    const auto* bytes = reinterpret_cast<const char*>(frame.pixels.data());
    std::size_t left = frame.pixels.size() * sizeof frame.pixels[0];
    while (left > 0) {
        const ssize_t written = write(pipe_, bytes, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            Fail(Wait(), error);
            return false;
        }
        bytes += written;
        left -= static_cast<std::size_t>(written);
    }
    return true;
}

bool Video::Finish(std::string* error) {
    const int status = Wait();
    if (status != 0) {
        Fail(status, error);
        return false;
    }
    if (fxMoveInto(unfinished_, file_))
        return true;
    *error = file_ + ": cannot be written: " + std::strerror(errno);
    return false;
}

int Video::Wait() {
    close(pipe_);
    int status = 0;
    while (waitpid(ffmpeg_, &status, 0) < 0 && errno == EINTR) {
    }
    ffmpeg_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void Video::Fail(int status, std::string* error) const {
    std::error_code failed;
    fs::remove(unfinished_, failed);
    *error = file_ + ": ffmpeg could not make it (exit status " + std::to_string(status) +
             "); what it said stands above";
}
