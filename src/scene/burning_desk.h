// The desktop burns: a polar grid whose inner rings run outwards, ragged, until nothing is left.
#pragma once

#include "base/arrays.h"
#include "scene/desk_grid.h"

// The picture lies on `num` directions crossed by ten rings. Rings 0 to 8 move, each direction at a speed of
// its own; ring 9 stays at `radius`, off the screen. Texture coordinates follow from positions, so the
// picture stays in place while the grid runs over it. The owner gives the desk its material, calls OnRender
// once per frame, and tests `done` after it. Nothing is allocated after Create.
//
// Distances are from the middle of the screen, 1 being half its width and height. In each frame a ring moves
// on by its speed times (dt / period) * e^2 * radius * 0.05, where dt is the frame's and e the burn's time so
// far, both in seconds: by the fields' first values, a speed of 0.7 reaches the corners (1.414) after 17.6
// seconds. Rings are then held between a least and a greatest distance from the one inside, in units of
// `gap`.
class FXFireDesk {
public:
    static constexpr int kMovingRings = 9;

    FXFireDesk() = default;
    virtual ~FXFireDesk() { Destroy(); }
    FXFireDesk(const FXFireDesk&) = delete;
    FXFireDesk& operator=(const FXFireDesk&) = delete;

    // At least two directions, less counts as two; the show has 1024. Without memory, a desk that draws
    // nothing and is done at once.
    void Create(int directions);
    void ReCreate(); // closes the hole for another burn; the glow keeps its colours
    void Destroy();
    // Moves the rings, draws the desk, and makes new speeds when the last ones are older than half a second.
    // time: seconds, rising.
    virtual void OnRender(PEnv* env, double time);

    // The steps of OnRender. Each of the speeds' begins with fxResetRandom.
    void UpdatePositions(double time);
    void UpdateSpeeds1(); // the base speed with a long bump on every ring, about 1.5 high,
    void UpdateSpeeds2(); // three medium ones on top, about 1,
    void UpdateSpeeds3(); // ten short ones on top, about 0.5

    bool done = false; // no vertex of a moving ring is on the screen; stays so until ReCreate
    int num = 4;       // directions
    float radius = 2.0f;
    float gap = 0.01f;        // between rings at first; the unit of their least and greatest distance
    float speedBase = 0.7f;   // of every ring, and where its glow begins
    double period = 90.0;     // the greater, the slower
    double lastTime = 0;      // of the last frame, in seconds
    double lastSpeedTime = 0; // of the last new speeds
    double burnStart = 0;     // of the first frame after Create or ReCreate
    bool firstFrame = true;   // the next frame is that one: nothing moves yet
    bool firstSpeeds = true;  // the next frame makes speeds, however old the last ones are
    FXFloatArray dirs;        // sine and cosine of each direction; direction 0 is up, the next clockwise
    FXFloatArray speeds;      // ring r, direction i: r * num + i; without a unit, 0.7 to about 10
    FXFloatArray dists;       // of ring r in direction i from the middle, in the same order
    FXDesk desk; // num columns, nine rows of cells; vertex row r is ring r, column num repeats column 0

private:
    void PaintRings();
    void CloseHole();
    float AdvanceFactor(double time);
    void AdvanceRings(float k);
    void KeepBands();
    bool PlaceRings(float su, float sv); // true when one of the moving rings is on the screen
    void PlaceVertex(int ring, int direction, float distance, float su, float sv);
    void UpdateGlow();
    void CloseSeam();
    void AddBump(int ring, float lengthShare, float height, bool over);

    tagFXVertex* Ring(int ring) { return desk.mesh.vertices + ring * (num + 1); }
    float* Dists(int ring) { return dists.items + ring * num; }
    float* Speeds(int ring) { return speeds.items + ring * num; }
};
