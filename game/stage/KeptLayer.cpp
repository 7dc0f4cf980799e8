#include "game/stage/KeptLayer.h"

#include <algorithm>
#include <cstring>

namespace torvane::kept {

namespace {

using adv::canvas::Rect;

struct Rows {
    pge::Pixel* data;
    int targetW, x, y, w;
    pge::Pixel* Frame(int j) const { return data + size_t(y + j) * size_t(targetW) + size_t(x); }
    pge::Pixel* Of(std::vector<pge::Pixel>& pixels, int j) const { return pixels.data() + size_t(j) * size_t(w); }
};

// With the inputs unchanged: the kept result copied back, and draw run again, clipped, over
// the bands of rows whose pixels were found changed. False, and nothing done, when so much
// changed that one whole drawing is cheaper.
bool RedrawChanged(pge::Sprite* target, KeptLayer& layer, const std::function<void()>& draw) {
    const int w = layer.rect.x1 - layer.rect.x0, h = layer.rect.y1 - layer.rect.y0;
    const Rows rows{target->GetData(), target->width, layer.rect.x0, layer.rect.y0, w};
    const size_t rowBytes = size_t(w) * sizeof(pge::Pixel);

    thread_local std::vector<Rect> bands; // within the rectangle
    bands.clear();
    long area = 0;
    for (int j = 0; j < h; ++j) {
        const pge::Pixel* now = rows.Frame(j);
        const pge::Pixel* was = rows.Of(layer.before, j);
        if (std::memcmp(now, was, rowBytes) == 0) continue;
        int i0 = 0, i1 = w;
        while (now[i0] == was[i0]) ++i0;
        while (now[i1 - 1] == was[i1 - 1]) --i1;
        // Bands a few rows apart are drawn as one: each drawing costs the shapes' setup anew.
        if (!bands.empty() && j - bands.back().y1 < 8) {
            Rect& b = bands.back();
            area -= long(b.x1 - b.x0) * (b.y1 - b.y0);
            b = {std::min(b.x0, i0), b.y0, std::max(b.x1, i1), j + 1};
        } else {
            bands.push_back({i0, j, i1, j + 1});
        }
        area += long(bands.back().x1 - bands.back().x0) * (bands.back().y1 - bands.back().y0);
    }
    if (bands.size() > 4 || area * 2 > long(w) * h) return false;

    for (const Rect& b : bands)
        for (int j = b.y0; j < b.y1; ++j) std::memcpy(rows.Of(layer.before, j), rows.Frame(j), rowBytes);
    for (int j = 0; j < h; ++j) std::memcpy(rows.Frame(j), rows.Of(layer.after, j), rowBytes);
    for (const Rect& b : bands) {
        const size_t bandBytes = size_t(b.x1 - b.x0) * sizeof(pge::Pixel);
        for (int j = b.y0; j < b.y1; ++j) std::memcpy(rows.Frame(j) + b.x0, rows.Of(layer.before, j) + b.x0, bandBytes);
        {
            const adv::canvas::ClipScope clip({rows.x + b.x0, rows.y + b.y0, rows.x + b.x1, rows.y + b.y1});
            draw();
        }
        for (int j = b.y0; j < b.y1; ++j) std::memcpy(rows.Of(layer.after, j) + b.x0, rows.Frame(j) + b.x0, bandBytes);
    }
    return true;
}

} // namespace

void Add(std::vector<int32_t>& key, float value) {
    int32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    key.push_back(bits);
}

void Add(std::vector<int32_t>& key, int32_t value) { key.push_back(value); }

void Add(std::vector<int32_t>& key, uint64_t value) {
    key.push_back(int32_t(uint32_t(value)));
    key.push_back(int32_t(uint32_t(value >> 32)));
}

void Draw(pge::Sprite* target, KeptLayer& layer, const std::vector<int32_t>& key, Rect rect,
          const std::function<void()>& draw) {
    if (!target) {
        draw();
        return;
    }
    rect = {std::max(rect.x0, 0), std::max(rect.y0, 0), std::min(rect.x1, target->width),
            std::min(rect.y1, target->height)};
    if (rect.x1 <= rect.x0 || rect.y1 <= rect.y0) {
        draw();
        return;
    }
    const bool same = layer.valid && layer.key == key && layer.targetW == target->width &&
                      layer.targetH == target->height && layer.rect.x0 == rect.x0 && layer.rect.y0 == rect.y0 &&
                      layer.rect.x1 == rect.x1 && layer.rect.y1 == rect.y1;
    if (same && RedrawChanged(target, layer, draw)) return;

    const int w = rect.x1 - rect.x0, h = rect.y1 - rect.y0;
    const Rows rows{target->GetData(), target->width, rect.x0, rect.y0, w};
    const size_t rowBytes = size_t(w) * sizeof(pge::Pixel);
    layer.before.resize(size_t(w) * size_t(h));
    layer.after.resize(layer.before.size());
    for (int j = 0; j < h; ++j) std::memcpy(rows.Of(layer.before, j), rows.Frame(j), rowBytes);
    draw();
    for (int j = 0; j < h; ++j) std::memcpy(rows.Of(layer.after, j), rows.Frame(j), rowBytes);
    layer.valid = true;
    layer.key = key;
    layer.rect = rect;
    layer.targetW = target->width;
    layer.targetH = target->height;
}

} // namespace torvane::kept
