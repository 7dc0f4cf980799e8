#pragma once
// Everything that happens in a scene is a script: actions built in code by chaining calls,
// run one after another over many frames by the ScriptRunner.
#include "engine/adventure/Geometry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace adv {

class AdventureGame;

// An action keeps its run-time state in itself (copies of a script share their actions),
// and each OnStart resets it.
class Action {
public:
    virtual ~Action() = default;
    virtual void OnStart(AdventureGame&) {}
    // True when finished.
    virtual bool OnUpdate(AdventureGame&, float) { return true; }
    virtual bool Skippable() const { return false; }
    virtual void OnSkip(AdventureGame&) {}
};

class Script {
public:
    using Function = std::function<void(AdventureGame&)>;
    using Condition = std::function<bool(AdventureGame&)>;

    Script& Add(std::shared_ptr<Action> action);
    Script& Append(const Script& other);
    Script& Say(const std::string& actor, const std::string& text);
    Script& Narrate(const std::string& text);
    Script& WalkTo(const std::string& actor, vf2d position);
    Script& Face(const std::string& actor, Facing facing);
    Script& Wait(float seconds);
    Script& Do(Function function);
    Script& If(Condition condition, const Script& thenScript, const Script& elseScript = {});
    // The branch is taken when the flag exists and is not 0.
    Script& IfFlag(const std::string& name, const Script& thenScript, const Script& elseScript = {});
    // A sound the game has by that name; an unknown name is silence.
    Script& PlaySound(const std::string& id);
    Script& GiveItem(const std::string& id);
    Script& TakeItem(const std::string& id);
    Script& SetFlag(const std::string& name, int32_t value);
    Script& GoToScene(const std::string& scene, const std::string& entry);
    Script& SetHotspotEnabled(const std::string& id, bool enabled);
    Script& StartDialogue(const std::string& id);
    Script& EndDialogue();
    Script& EndGame(const std::string& text);

    bool Empty() const { return actions.empty(); }

    std::vector<std::shared_ptr<Action>> actions;
};

// A stack of running scripts: a branch pushes its chosen script on top.
class ScriptRunner {
public:
    struct Frame {
        std::vector<std::shared_ptr<Action>> actions;
        uint32_t index = 0;
        bool started = false;
    };

    // Clears the stack and runs the script.
    void Start(const Script& script);
    // An empty script pushes nothing.
    void Push(const Script& script);
    void Clear();
    bool Running() const { return !frames.empty(); }
    // At most kMaxSteps steps; a chain of instantaneous actions runs within one call.
    void Update(AdventureGame& game, float dt);
    // Skips the top action when it has started and can be skipped.
    void Skip(AdventureGame& game);

    static constexpr int kMaxSteps = 256;
    std::vector<Frame> frames;
    uint32_t generation = 0; // counts clears, so that a replaced stack is told from a grown one
};

} // namespace adv
