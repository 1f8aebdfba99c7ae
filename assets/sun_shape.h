// The sun's shape, which its models and the glow around it share.
#pragma once

// The scene draws the sun as if screens were 4:3. Drawn taller, it is all but round on 16:9 and 16:10 and
// still pleases on 4:3.
constexpr float kSunTall = 1.25f;
// What the sun covers of the half width of the pictures centred on it.
constexpr float kSunShare = 0.4f;
