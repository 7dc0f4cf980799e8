#pragma once
// A figure in a scene: the player or someone to talk to. Walks along a path, speaks timed
// lines, and is drawn as a small painted figure scaled by the depth of the room.
#include "engine/adventure/Geometry.h"
#include "engine/adventure/Script.h"
#include "engine/adventure/Verb.h"
#include "pge/Pixel.h"

#include <map>
#include <string>
#include <vector>

namespace adv {

// The colours a figure is painted in.
struct ActorLook {
    pge::Pixel skin{226, 184, 150};
    pge::Pixel hair{70, 46, 30};
    pge::Pixel coat{60, 90, 140};
    pge::Pixel legs{58, 52, 48};
    pge::Pixel speech{255, 255, 255}; // colour of its spoken lines
};

struct Actor {
    std::string id;
    std::string name; // shown to the player
    std::string scene;
    vf2d position;
    float scale = 1.0f;
    Facing facing = Facing::Front;
    std::vector<vf2d> path;
    float speed = 70.0f; // scene pixels per second at scale 1
    bool visible = true;
    bool clickable = true;
    Verb defaultVerb = Verb::Look;
    int spriteWidth = 20;  // at scale 1
    int spriteHeight = 52;
    ActorLook look;
    std::map<Verb, Script> scripts;
    std::map<std::string, Script> useScripts; // by item id
    std::string speech;
    float speechTime = 0.0f;
    float walkClock = 0.0f; // drives the stride
    std::string stepSound;  // played at each footfall while the figure walks in view; empty for none

    // seconds not positive: SpeechDuration(text).
    void Say(const std::string& text, float seconds);
    void StopTalking();
    bool Talking() const { return speechTime > 0.0f; }
    void Teleport(vf2d where, Facing facing);
    void SetPath(const std::vector<vf2d>& points);
    bool Walking() const { return !path.empty(); }
    // Speech time and walking.
    void Update(float dt);
    // The box of the figure at its scale, with a margin, up from the feet.
    bool ContainsPoint(vf2d p) const;
    // Beside the actor on its own row, on the side the other comes from.
    vf2d ApproachPoint(vf2d from) const;

    static float SpeechDuration(const std::string& text);
    // The legs swing as sin(walkClock * kStrideRate); a foot lands at each end of the swing.
    static constexpr float kStrideRate = 11.0f;
    // The footfalls after walking `from` seconds up to `to` seconds.
    static int Footfalls(float from, float to);
    // Process-wide, 0..8, 4 at first.
    static void SetTextSpeed(int speed);
    static int TextSpeed();
    static constexpr int kTopTextSpeed = 8;
};

} // namespace adv
