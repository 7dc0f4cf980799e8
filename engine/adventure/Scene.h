#pragma once
// A scene: a painted background, hotspots, objects, entries and the walkable floor.
#include "engine/adventure/Geometry.h"
#include "engine/adventure/Script.h"
#include "engine/adventure/Verb.h"
#include "engine/adventure/WalkArea.h"
#include "pge/Sprite.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace adv {

// The depth of a room: an actor's size grows from scale0 at y0 to scale1 at y1.
struct ScaleZone {
    float y0 = 0.0f;
    float y1 = 0.0f;
    float scale0 = 1.0f;
    float scale1 = 1.0f;

    float At(float y) const;
};

struct Hotspot {
    std::string id;
    std::string name; // shown to the player
    Polygon shape;
    bool hasApproach = false;
    vf2d approach;
    Facing approachFacing = Facing::Back;
    Verb defaultVerb = Verb::Look;
    bool enabled = true;
    std::map<Verb, Script> scripts;
    std::map<std::string, Script> useScripts; // by item id
};

// A picture placed in the scene (top left at position). It is drawn while the hotspot of
// the same id, when there is one, is enabled: taking a thing or opening a door is one switch.
struct SceneObject {
    std::string id;
    vf2d position;
    std::shared_ptr<pge::Sprite> sprite;
};

struct SceneEntry {
    vf2d position;
    Facing facing = Facing::Front;
};

struct Scene {
    std::string id;
    std::vector<Hotspot> hotspots; // in order of adding; later ones lie on top
    std::vector<SceneObject> objects;
    std::map<std::string, SceneEntry> entries;
    std::string background;                  // asset name
    std::shared_ptr<pge::Sprite> painted;    // a background drawn by code, used before the asset
    WalkArea walkArea;
    ScaleZone scaleZone;
    Script firstVisitScript;
    Script enterScript;
    std::string music; // asset name, empty for silence

    Hotspot* Find(const std::string& hotspotId);
    // The topmost enabled hotspot containing p, or null.
    Hotspot* HotspotAt(vf2d p);
    const SceneEntry* Entry(const std::string& name) const;
    // The background's width; 0 without background.
    int Width() const;
    const pge::Sprite* Background() const;
    Hotspot& AddHotspot(const std::string& hotspotId, const std::string& name, const Polygon& polygon);
    Hotspot& AddRectHotspot(const std::string& hotspotId, const std::string& name, float x, float y, float width,
                            float height);
    SceneObject& AddObject(const std::string& objectId, vf2d position);
    void SetEntry(const std::string& name, vf2d position, Facing facing);
    bool ObjectShown(const SceneObject& object);
};

} // namespace adv
