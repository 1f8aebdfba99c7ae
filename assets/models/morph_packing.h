// The morph's way into its file.
#pragma once

#include <string>

class FXAnim;

// Writes an animation whose key frames are of one layout, as FXAnim::Save does, but shorter: a corner shares
// the position, or the normal, with another one when they are equal in every key frame, whatever the rest of
// the two is; and all share one texture coordinate, for the scene computes its own. Empty when well, else
// what went wrong.
std::string WriteAnimation(const std::string& file, const FXAnim& anim);
