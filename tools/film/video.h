// A film in a video file, made by the ffmpeg that the machine has.
#pragma once

#include "film/picture.h"

#include <string>

#include <sys/types.h>

// Frames go to ffmpeg as they are drawn; it writes beside the file, which is replaced only by a complete
// film. The kind of video follows the file's ending.
class Video {
public:
    Video() = default;
    ~Video(); // an unfinished film is thrown away
    Video(const Video&) = delete;
    Video& operator=(const Video&) = delete;

    // All frames are of this size. False with a line in error, when there is no ffmpeg above all.
    bool Open(const std::string& file, int width, int height, int framesPerSecond, std::string* error);
    bool Add(const Picture& frame, std::string* error);
    // Waits for ffmpeg. False with its complaint, or exit status, in error.
    bool Finish(std::string* error);

private:
    int Wait(); // closes the pipe; ffmpeg's exit status, or 128 and more for a signal
    void Fail(int status, std::string* error) const;

    std::string file_;
    std::string unfinished_;
    pid_t ffmpeg_ = -1;
    int pipe_ = -1;
};
