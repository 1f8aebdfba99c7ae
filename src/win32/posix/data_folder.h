// The folder with the show's package: where it comes from, and which of the installed shows is taken.
#pragma once

#include <string>
#include <vector>

// The default one is made for primary monitors up to so many pixels wide. On wider ones the large one is
// taken where it is installed beside it.
inline constexpr int kWidestForDefaultShow = 2560;

// Who says how wide the primary monitor is; asked whenever a show is looked for beside the program. A program
// that names nobody takes the default show.
void AskScreenWidthOf(int (*width)());

// One of the places where a data folder may be named, or lie.
struct DataPlace {
    enum Kind { Variable, Settings, Installed };
    Kind kind;
    std::string name;    // of the variable, the settings file or the package
    std::string folder;  // the one that it gives; empty: none
    std::string problem; // of a settings file: what is wrong with it
    bool there = true;   // the file is
};

// All of them as they are now; the first that gives a folder counts. A bad settings file gives none.
std::vector<DataPlace> ListDataPlaces();
// That first one; null: no folder is known.
const DataPlace* ChosenDataPlace(const std::vector<DataPlace>& places);
