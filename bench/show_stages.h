// Brings the built show to the middle of a stage, so that frames of it can be measured.
#pragma once

// Seconds between two measured frames: so short that no stage ends while it is measured.
constexpr double kBenchStep = 1e-7;

// The show must have been built (BuildScene) and its device be current. Draws what lies before the stage in
// coarse steps; the cube is out in every stage. Gives the time of the next frame.
double EnterStage(int stage);
