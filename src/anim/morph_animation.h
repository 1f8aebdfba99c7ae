// The key-frame morph: models of one topology, each vertex moving from one key frame to the next.
#pragma once

#include "anim/bezier_graph.h"
#include "anim/spline_set.h"
#include "base/str_array.h"
#include "geometry/model.h"
#include "geometry/vector_map.h"

#include <cstdio>

// Owns the key frames. Timing follows frameTimes, drawing the models; a file may disagree. With
// UpdateInterpolation(true, ...) it draws imodel, a copy of key frame 0 whose positions and normals are
// rewritten every frame; without, the key frames themselves. Of what is loaded, key frames keep the working
// meshes alone. The environment must be set while it loads.
//
// Load, prepare, UpdateInterpolation, StartAnim, then OnRender for every frame; nothing is allocated from
// UpdateInterpolation on. Loading and preparing belong before the render loop, the rest to its thread. Key
// frames are numbered from 0; where the one that is named is missing, nothing happens.
class FXAnim : public PRender, public PMeshSaveClb {
public:
    FXAnim() = default;
    ~FXAnim() { Destroy(); }
    FXAnim(const FXAnim&) = delete;
    FXAnim& operator=(const FXAnim&) = delete;

    void Destroy();

    // The record: the whole of version 2,
    template <class Self, class V> static bool Fields_v02(Self& self, V& v) {
        return v.Strings("the name of key frame", "key frames", self.frameNames) &&
               v.Ints("time", "the animation", self.frameTimes) && FXBezierGraph::Fields(self.graph, v) &&
               v.Float("the parameter", self.storedParam) && v.Flag("the flag playing", self.playing) &&
               v.Flag("the flag backwards", self.backwards) && v.Flag("the flag loop", self.loop) &&
               v.Flag("the flag ping-pong", self.pingPong);
    }
    // and what version 3, which begins with its magic word, has behind that. Parts: who reads, writes or
    // checks it. Begin comes before the meshes, Pools before their pools.
    static constexpr const char* kVersion3 = "oa03";
    template <class Parts, class V> static bool Fields_v03(Parts& p, V& v) {
        return v.template Count<FXMeshRecord>("meshes", p.count) && v.String("the library", p.library) &&
               p.Begin() && v.Each(p.count, [&](int m) { return p.PackedMesh(m); }) && p.Pools() &&
               v.Each(p.count, [&](int m) { return p.Pool(m); }) &&
               v.Each(p.frames, [&](int f) { return p.Map(f); });
    }

    // Files (morph_file.cpp). False when there is no entry or file of 8 bytes at least; a malformed one gives
    // empty key frames. What is beyond the budget is left out: all meshes (version 3), or the key frames from
    // the one that does not fit on (version 2); without a budget given, that is said in the trace.
    bool LoadCN(FXPackage* pck, int id, FXLoadBudget* budget = nullptr);
    bool Load(const char* path);
    // The entries of the pictures that LoadCN would load with version 3 (FXMatlib::ListPictures).
    static void ListPictures(FXPackage* pck, int id, FXArray<int>* entries);
    // Version 3: all key frames in the layout of the first. False when they do not agree, or not all of it
    // got to the disk.
    bool Save(const char* path);
    bool Save_v02(std::FILE* file) const; // the models are files of their own
    bool Save_v03(std::FILE* file);
    // Adds the key frames' libraries to a package in the making (FXModel::Compile). A key frame whose name is
    // that of a file (version 2) is stored there too, as a model, and gets its number for a name.
    bool Compile(FXPackage* pck);
    // May the two vertices share stored vectors: are they alike in every key frame?
    bool TestRedirect(int meshA, int vertexA, int meshB, int vertexB) override;

    // Playing. Times are seconds on one clock; without frame times there is nothing to play or draw.
    void StartAnim(double time);    // from key frame 0
    void ContinueAnim(double time); // from the start of the key frame where it stands
    void ComputeFrameDuration();    // from frameTimes, for `frame`
    // Draws, moving on by one key frame at most. What a key frame ran over its time counts for the next one,
    // unless it is more than the whole of it. Without loop, `playing` ends with the last key frame's arrival
    // when it is interpolated, with the end of its time when not.
    void OnRender(PEnv* env, double time) override;

    // Interpolation (morph_interpolation.cpp). Key frames that do not agree in meshes and vertices, or for
    // whose curves there is no memory, are not interpolated: the first one is shown.
    void UpdateInterpolation(bool on, bool second); // makes imodel and the curves anew; second is kept only
    void UpdateIFrame();          // aims at the segment from `frame` to the next one, by the flags
    void UpdateIPos(double time); // moves imodel's vertices to where they are at that time
    // Key frames keep no meshes: what is interpolated goes on, nothing else does.
    void ReleaseKeyFrames();
    void SetActFrames(int a, int b); // by hand: the segment,
    void SetActPhase(float p);       // and where on it, 0..1

    // Preparation: what FXMesh does, to every key frame by the box of key frame i.
    void Unitize(int i);
    void UnitizeStretch(int i);
    void UnitizeStretch1(int i);
    void UnitizeStretch1HalfHoriz(int i); // into the left half: as if the box were twice as wide to the right
    void FlipHoriz();
    void ResizeTextCoords();
    void ResizeTextCoords1();
    void Normalize(int i, bool onlyTouched); // -1: all
    // From key frame i's front view, for a mesh (-1: all); all the others get the same coordinates.
    void ComputeFrontTexCoords(int i, int mesh);
    void MoveFrame(int dest, int src); // with its name and time

    FXBezierGraph graph;
    float storedParam = 0;    // stored with the animation and not used
    bool playing = true;      // the key frames move on
    bool backwards = false;   // from the last one to the first
    bool loop = true;         // goes on from the other end
    bool pingPong = false;    // with loop: turns at the ends
    double startTime = 0;     // of the current key frame
    int frame = 0;            // the current key frame
    double frameDuration = 0; // of the current key frame
    bool paused = false;      // drawn where it stands
    bool frameChanged = false;
    FXOwnerArray<FXModel> models; // entries may be null
    FXStrArray frameNames;
    FXArray<int> frameTimes; // milliseconds; 0 and less mean 500
    bool interpolate = false;
    bool secondFlag = false; // kept and not used
    bool linear = false;     // straight lines between key frames instead of curves through them
    FXModel imodel;
    FXSplineSet posSplines; // one per vertex of imodel, in mesh and vertex order
    FXSplineSet normSplines;
    bool segmentReversed = false; // the segment is run from its end: at 1 - phase
    float tension = 1.0f;         // of the curves; 0: straight
    float phase = 0;              // within the current key frame, 0..1

private:
    struct Loader;
    struct Saver;

    // Without a package they are Load_v02 and Load_v03, of a file.
    int Load_v02CN(FXPackage* pck, FXLoadBudget* budget);
    int Load_v03CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget);
    void LoadFrom(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget);
    bool FramesAreAlike() const;
    void FinishLoading();
    void FitAll(int i, void (FXModel::*fit)(const float*), bool halfHoriz = false);
    void Advance(double time);
    int LastFrame() const { return frameTimes.count - 1; }
    FXModel* EnumModels(int i) const { return i >= 0 && i < models.count ? models[i] : nullptr; }
    bool FramesAgree() const;
    bool BuildSplines();
    void AimAt(int a, int b);
    void MoveVertices(float p);
};
