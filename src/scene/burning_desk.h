// The desktop burns: a polar grid whose inner rings run outwards, ragged, until nothing is left.
#pragma once

#include "base/arrays.h"
#include "scene/desk_grid.h"

// The picture lies on `num` directions crossed by ten rings. Rings 0 to 8 move, each direction at a speed of
// its own; ring 9 stays at `radius`, off the screen. Texture coordinates follow from positions, so the
// picture stays in place while the grid runs over it. The owner gives the desk its material, calls OnRender
// once per frame, and tests `done` after it. Nothing is allocated after Create.
class FXFireDesk {
public:
    static constexpr int kMovingRings = 9;

    FXFireDesk() = default;
    virtual ~FXFireDesk() { Destroy(); }
    FXFireDesk(const FXFireDesk&) = delete;
    FXFireDesk& operator=(const FXFireDesk&) = delete;

    // At least two directions; without memory, a desk that draws nothing and is done at once.
    void Create(int directions);
    void ReCreate(); // closes the hole for another burn; the glow keeps its colours
    void Destroy();
    virtual void OnRender(PEnv* env, double time);

    // The steps of OnRender. The burn advances with the square of the time since its first frame.
    void UpdatePositions(double time);
    void UpdateSpeeds1(); // the base speed with a long bump on every ring,
    void UpdateSpeeds2(); // medium ones on top,
    void UpdateSpeeds3(); // short ones on top

    bool done = false; // none of the moving rings is on the screen any more
    int num = 4;
    float radius = 2.0f;
    float gap = 0.01f; // the unit of the rings' distances
    float speedBase = 0.7f;
    double period = 90.0;
    double lastTime = 0;
    double lastSpeedTime = 0;
    double burnStart = 0;
    bool firstFrame = true;
    bool firstSpeeds = true;
    FXFloatArray dirs;   // sine and cosine of each direction; direction 0 is up, the next clockwise
    FXFloatArray speeds; // ring r, direction i: r * num + i
    FXFloatArray dists;  // from the centre, in the same order
    FXDesk desk;

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
