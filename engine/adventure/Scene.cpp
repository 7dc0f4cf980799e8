#include "engine/adventure/Scene.h"

#include "engine/Assets.h"

#include <algorithm>
#include <cmath>

namespace adv {

float ScaleZone::At(float y) const {
    if (std::fabs(y1 - y0) < 0.001f) return scale1;
    const float t = std::clamp((y - y0) / (y1 - y0), 0.0f, 1.0f);
    return scale0 + (scale1 - scale0) * t;
}

Hotspot* Scene::Find(const std::string& hotspotId) {
    for (Hotspot& h : hotspots)
        if (h.id == hotspotId) return &h;
    return nullptr;
}

Hotspot* Scene::HotspotAt(vf2d p) {
    for (auto it = hotspots.rbegin(); it != hotspots.rend(); ++it)
        if (it->enabled && it->shape.Contains(p)) return &*it;
    return nullptr;
}

const SceneEntry* Scene::Entry(const std::string& name) const {
    const auto it = entries.find(name);
    return it == entries.end() ? nullptr : &it->second;
}

const pge::Sprite* Scene::Background() const {
    if (painted) return painted.get();
    if (background.empty()) return nullptr;
    return Assets::Sprite(background)->Sprite();
}

int Scene::Width() const {
    const pge::Sprite* sprite = Background();
    return sprite ? sprite->width : 0;
}

Hotspot& Scene::AddHotspot(const std::string& hotspotId, const std::string& name, const Polygon& polygon) {
    Hotspot h;
    h.id = hotspotId;
    h.name = name;
    h.shape = polygon;
    hotspots.push_back(h);
    return hotspots.back();
}

Hotspot& Scene::AddRectHotspot(const std::string& hotspotId, const std::string& name, float x, float y, float width,
                               float height) {
    return AddHotspot(hotspotId, name, Polygon::Rect(x, y, width, height));
}

SceneObject& Scene::AddObject(const std::string& objectId, vf2d position) {
    objects.push_back(SceneObject{objectId, position, nullptr});
    return objects.back();
}

void Scene::SetEntry(const std::string& name, vf2d position, Facing facing) { entries[name] = {position, facing}; }

bool Scene::ObjectShown(const SceneObject& object) {
    const Hotspot* h = Find(object.id);
    return !h || h->enabled;
}

} // namespace adv
