#include "engine/adventure/SceneManager.h"

namespace adv {

void SceneManager::Register(const std::string& id, std::unique_ptr<SceneDefinition> definition) {
    definitions[id] = std::move(definition);
    scenes.erase(id);
}

SceneDefinition* SceneManager::Definition(const std::string& id) {
    const auto it = definitions.find(id);
    return it == definitions.end() ? nullptr : it->second.get();
}

Scene* SceneManager::Load(AdventureGame& game, const std::string& id) {
    if (Scene* built = Built(id)) return built;
    SceneDefinition* definition = Definition(id);
    if (!definition) return nullptr;
    Scene& scene = scenes[id];
    scene.id = id;
    definition->Build(game, scene);
    scene.walkArea.Bake();
    return &scene;
}

Scene* SceneManager::Built(const std::string& id) {
    const auto it = scenes.find(id);
    return it == scenes.end() ? nullptr : &it->second;
}

} // namespace adv
