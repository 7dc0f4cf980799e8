#pragma once
// Scene definitions supplied by a concrete game, and the scenes built from them on demand.
#include "engine/adventure/Scene.h"

#include <map>
#include <memory>
#include <string>

namespace adv {

class AdventureGame;

class SceneDefinition {
public:
    virtual ~SceneDefinition() = default;
    // Fills a fresh scene: background, floor, hotspots, entries.
    virtual void Build(AdventureGame& game, Scene& scene) = 0;
    virtual Script OnEnter(AdventureGame&, const std::string&) { return {}; }
    virtual void OnExit(AdventureGame&) {}
    virtual void OnUpdate(AdventureGame&, float) {}
    virtual std::string DisplayName() const { return ""; }
};

// A full-screen card before play, such as the title; it ends on a click or key, or after
// Duration() seconds when that is positive.
class ScreenDefinition {
public:
    virtual ~ScreenDefinition() = default;
    virtual void OnEnter(AdventureGame&) {}
    virtual void Draw(AdventureGame& game, float elapsed) = 0;
    virtual float Duration() const { return 0.0f; }
};

class SceneManager {
public:
    void Register(const std::string& id, std::unique_ptr<SceneDefinition> definition);
    bool Exists(const std::string& id) const { return definitions.count(id) > 0; }
    SceneDefinition* Definition(const std::string& id);
    // The scene, built on first use; null when no definition has that id.
    Scene* Load(AdventureGame& game, const std::string& id);
    // A built scene, or null.
    Scene* Built(const std::string& id);
    // Forgets the built scenes, so that each is built afresh.
    void Reset() { scenes.clear(); }

    std::map<std::string, std::unique_ptr<SceneDefinition>> definitions;
    std::map<std::string, Scene> scenes;
};

} // namespace adv
