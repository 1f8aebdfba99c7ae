// Which of the installed shows is taken.
#pragma once

// The default one is made for primary monitors up to so many pixels wide. On wider ones the large one is
// taken where it is installed beside it.
inline constexpr int kWidestForDefaultShow = 2560;

// Who says how wide the primary monitor is; asked whenever a show is looked for beside the program. A program
// that names nobody takes the default show.
void AskScreenWidthOf(int (*width)());
