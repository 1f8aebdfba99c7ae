// The sun's shape, which its models and the glow around it share.
#pragma once

// The scene draws the sun as if screens were 4:3. Drawn taller, it is all but round on 16:9 and 16:10 and
// still pleases on 4:3.
constexpr float kSunTall = 1.25f;
// What the sun covers of the half width of the pictures centred on it.
constexpr float kSunShare = 0.4f;
// How much of the screen's width the core covers (kSunScale of the scene).
constexpr float kSunAcross = 0.6f;
// What of the core lies below this height, if its radius is 1, is always below the screen's edge; a little
// less.
constexpr float kSunLowest = -0.42f;
