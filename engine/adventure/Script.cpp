#include "engine/adventure/Script.h"

#include "engine/adventure/AdventureGame.h"
#include "engine/adventure/Lang.h"

namespace adv {

namespace {

class SayAction : public Action {
public:
    SayAction(std::string actor, std::string text) : actor(std::move(actor)), text(std::move(text)) {}
    void OnStart(AdventureGame& game) override {
        if (Actor* a = game.FindActor(actor)) a->Say(Tr(text), -1.0f);
    }
    bool OnUpdate(AdventureGame& game, float) override {
        const Actor* a = game.FindActor(actor);
        return !a || !a->Talking();
    }
    bool Skippable() const override { return true; }
    void OnSkip(AdventureGame& game) override {
        if (Actor* a = game.FindActor(actor)) a->StopTalking();
    }

private:
    std::string actor;
    std::string text;
};

class NarrateAction : public Action {
public:
    explicit NarrateAction(std::string text) : text(std::move(text)) {}
    void OnStart(AdventureGame& game) override {
        const std::string shown = Tr(text);
        left = Actor::SpeechDuration(shown);
        game.Narrate(shown, left);
    }
    bool OnUpdate(AdventureGame&, float dt) override {
        left -= dt;
        return left <= 0.0f;
    }
    bool Skippable() const override { return true; }
    void OnSkip(AdventureGame& game) override {
        left = 0.0f;
        game.Narrate("", 0.0f);
    }

private:
    std::string text;
    float left = 0.0f;
};

class WaitAction : public Action {
public:
    explicit WaitAction(float seconds) : seconds(seconds) {}
    void OnStart(AdventureGame&) override { left = seconds; }
    bool OnUpdate(AdventureGame&, float dt) override {
        left -= dt;
        return left <= 0.0f;
    }

private:
    float seconds;
    float left = 0.0f;
};

class WalkAction : public Action {
public:
    WalkAction(std::string actor, vf2d target) : actor(std::move(actor)), target(target) {}
    void OnStart(AdventureGame& game) override {
        Actor* a = game.FindActor(actor);
        if (!a || !game.current) return;
        WalkArea& area = game.current->walkArea;
        const std::vector<vf2d> path = area.FindPath(a->position, target);
        // A scripted walk never hangs on a bad floor: with no way there, the actor is put there.
        if (path.empty())
            a->Teleport(area.ClampToArea(target), a->facing);
        else
            a->SetPath(path);
    }
    bool OnUpdate(AdventureGame& game, float) override {
        const Actor* a = game.FindActor(actor);
        return !a || !a->Walking();
    }

private:
    std::string actor;
    vf2d target;
};

class FaceAction : public Action {
public:
    FaceAction(std::string actor, Facing facing) : actor(std::move(actor)), facing(facing) {}
    void OnStart(AdventureGame& game) override {
        if (Actor* a = game.FindActor(actor)) a->facing = facing;
    }

private:
    std::string actor;
    Facing facing;
};

class CallbackAction : public Action {
public:
    explicit CallbackAction(Script::Function function) : function(std::move(function)) {}
    void OnStart(AdventureGame& game) override {
        if (function) function(game);
    }

private:
    Script::Function function;
};

class BranchAction : public Action {
public:
    BranchAction(Script::Condition condition, Script thenScript, Script elseScript)
        : condition(std::move(condition)), thenScript(std::move(thenScript)), elseScript(std::move(elseScript)) {}
    void OnStart(AdventureGame& game) override {
        const bool taken = condition && condition(game);
        game.runner.Push(taken ? thenScript : elseScript);
    }

private:
    Script::Condition condition;
    Script thenScript;
    Script elseScript;
};

} // namespace

Script& Script::Add(std::shared_ptr<Action> action) {
    actions.push_back(std::move(action));
    return *this;
}

Script& Script::Append(const Script& other) {
    actions.insert(actions.end(), other.actions.begin(), other.actions.end());
    return *this;
}

Script& Script::Say(const std::string& actor, const std::string& text) {
    return Add(std::make_shared<SayAction>(actor, text));
}

Script& Script::Narrate(const std::string& text) { return Add(std::make_shared<NarrateAction>(text)); }

Script& Script::WalkTo(const std::string& actor, vf2d position) {
    return Add(std::make_shared<WalkAction>(actor, position));
}

Script& Script::Face(const std::string& actor, Facing facing) { return Add(std::make_shared<FaceAction>(actor, facing)); }

Script& Script::Wait(float seconds) { return Add(std::make_shared<WaitAction>(seconds)); }

Script& Script::Do(Function function) { return Add(std::make_shared<CallbackAction>(std::move(function))); }

Script& Script::If(Condition condition, const Script& thenScript, const Script& elseScript) {
    return Add(std::make_shared<BranchAction>(std::move(condition), thenScript, elseScript));
}

Script& Script::IfFlag(const std::string& name, const Script& thenScript, const Script& elseScript) {
    return If([name](AdventureGame& g) { return g.Flag(name) != 0; }, thenScript, elseScript);
}

Script& Script::PlaySound(const std::string& id) {
    return Do([id](AdventureGame& g) { g.PlaySound(id); });
}

Script& Script::GiveItem(const std::string& id) {
    return Do([id](AdventureGame& g) { g.inventory.Add(id); });
}

Script& Script::TakeItem(const std::string& id) {
    return Do([id](AdventureGame& g) { g.inventory.Remove(id); });
}

Script& Script::SetFlag(const std::string& name, int32_t value) {
    return Do([name, value](AdventureGame& g) { g.SetFlag(name, value); });
}

Script& Script::GoToScene(const std::string& scene, const std::string& entry) {
    return Do([scene, entry](AdventureGame& g) { g.ChangeScene(scene, entry); });
}

Script& Script::SetHotspotEnabled(const std::string& id, bool enabled) {
    return Do([id, enabled](AdventureGame& g) {
        if (!g.current) return;
        if (Hotspot* h = g.current->Find(id)) h->enabled = enabled;
    });
}

Script& Script::StartDialogue(const std::string& id) {
    return Do([id](AdventureGame& g) { g.BeginDialogue(id); });
}

Script& Script::EndDialogue() {
    return Do([](AdventureGame& g) { g.EndDialogue(); });
}

Script& Script::EndGame(const std::string& text) {
    return Do([text](AdventureGame& g) { g.FinishGame(text); });
}

// The runner.

void ScriptRunner::Clear() {
    frames.clear();
    ++generation;
}

void ScriptRunner::Start(const Script& script) {
    Clear();
    Push(script);
}

void ScriptRunner::Push(const Script& script) {
    if (script.Empty()) return;
    frames.push_back(Frame{script.actions, 0, false});
}

void ScriptRunner::Update(AdventureGame& game, float dt) {
    for (int step = 0; step < kMaxSteps && !frames.empty(); ++step) {
        if (frames.back().index >= frames.back().actions.size()) {
            frames.pop_back();
            continue;
        }
        const size_t depth = frames.size();
        const uint32_t before = generation;
        Frame& frame = frames.back();
        const std::shared_ptr<Action> action = frame.actions[frame.index];
        if (!frame.started) {
            frame.started = true;
            action->OnStart(game);
            if (frames.size() != depth || generation != before) {
                // OnStart pushed frames, or cleared the stack (perhaps starting another
                // script): the frame that ran it, when it is still there, moves on.
                if (generation == before) {
                    Frame& own = frames[depth - 1];
                    ++own.index;
                    own.started = false;
                }
                continue;
            }
        }
        Frame& top = frames.back();
        if (!action->OnUpdate(game, dt)) return;
        ++top.index;
        top.started = false;
        dt = 0.0f;
    }
}

void ScriptRunner::Skip(AdventureGame& game) {
    if (frames.empty()) return;
    const Frame& top = frames.back();
    if (top.index >= top.actions.size() || !top.started) return;
    const std::shared_ptr<Action> action = top.actions[top.index];
    if (action->Skippable()) action->OnSkip(game);
}

} // namespace adv
