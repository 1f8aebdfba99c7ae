// Many small frames on one picture, each with its time under it.
#pragma once

#include "film/picture.h"

#include <string>
#include <vector>

class ContactSheet {
public:
    explicit ContactSheet(int thumbWidth = 480) : thumbWidth_(thumbWidth) {}

    void Add(const Picture& frame, double seconds);
    bool Empty() const { return thumbs_.empty(); }
    // In as many columns as asked, 0: about as many as rows.
    bool Write(const std::string& file, int columns, std::string* error) const;

private:
    struct Thumb {
        Picture picture;
        double seconds;
    };

    int thumbWidth_;
    std::vector<Thumb> thumbs_;
};

// Gives back the fonts that the captions of sheets were drawn with; at the end of a program, for leak
// checkers.
void ReleaseFonts();
