#include "game/rules/TorvaneGame.h"

#include "game/rules/Lang.h"

#include <cmath>
#include <utility>

namespace torvane {

namespace {

// The percentage of k out of n, rounded to nearest with halves upwards; 0 for n = 0.
int Share(int n, int k) { return n == 0 ? 0 : (n + 200 * k) / (2 * n); }

} // namespace

namespace {
uint32_t s_revision = 0;
} // namespace

uint32_t Tower::NextRevision() { return s_revision++; }

uint32_t Tower::PeekRevision() { return s_revision; }

void Tower::SetNextRevision(uint32_t next) { s_revision = next; }

Game::Game(unsigned seed) : rng(seed) {
    StartLevel(1, false);
    // The first level is laid and its numbers spent, but the game waits on the title.
    phase = Phase::Title;
    events.clear();
}

void Game::Update(float dt) {
    switch (phase) {
    case Phase::Build:
        buildLeft -= dt;
        clock += dt;
        if (buildLeft <= 0.0f) {
            buildLeft = 0.0f;
            EndBuild(false);
        } else if (autoEndAt >= 0.0f && clock >= autoEndAt) {
            EndBuild(false);
        }
        break;
    case Phase::Inspect:
        clock += dt;
        if (clock >= inspectEndAt) phase = Phase::Announce;
        break;
    case Phase::Attack:
        clock += dt;
        UpdateAttack();
        break;
    default:
        break;
    }
}

std::vector<Event> Game::TakeEvents() {
    std::vector<Event> taken = std::move(events);
    events.clear();
    return taken;
}

float Game::Random() {
    const float r = static_cast<float>(rng()) * 2.3283064e-10f;
    return r >= 1.0f ? 0.99999994f : r;
}

int Game::WrapX(int x) const {
    const int w = config.width;
    if (!config.ring || w <= 0) return x;
    return ((x % w) + w) % w;
}

float Game::WrapDiff(float d) const {
    if (!config.ring || config.width <= 0) return d;
    const float w = static_cast<float>(config.width);
    return d - w * std::round(d / w);
}

int Game::CellAt(int tower, int x, int y) const {
    if (tower < 0 || tower >= static_cast<int>(towers.size())) return 0;
    const Tower& t = towers[tower];
    if (x < 0 || x >= t.width || y < 0 || y >= config.height) return 0;
    const size_t index = static_cast<size_t>(x + y * t.width);
    return index < t.cells.size() ? t.cells[index] : 0;
}

int Game::ColumnTop(int tower, int x) const {
    for (int y = config.height - 1; y >= 0; --y)
        if (CellAt(tower, x, y) != 0) return y + 1;
    return 0;
}

int Game::EvalTop(int tower, int x) const {
    if (phase != Phase::Build) return ColumnTop(tower, x);
    // What stands over a gap falls at the inspection and does not count yet.
    int y = 0;
    while (y < config.height && CellAt(tower, x, y) != 0) ++y;
    return y;
}

int Game::FullRows(int tower) const {
    int full = 0;
    for (int y = 0; y < config.height; ++y) {
        bool rowFull = config.width > 0;
        for (int x = 0; x < config.width && rowFull; ++x) rowFull = CellAt(tower, x, y) != 0;
        if (rowFull) ++full;
    }
    return full;
}

bool Game::Free(int tower, const std::vector<Cell>& cells, int x, int y) const {
    for (const Cell& c : cells) {
        const int cx = WrapX(x + c.x);
        const int cy = y + c.y;
        if (cx < 0 || cx >= config.width || cy < 0) return false;
        if (cy < config.height && CellAt(tower, cx, cy) != 0) return false;
    }
    return true;
}

bool Game::Inside(const std::vector<Cell>& cells, int y) const {
    for (const Cell& c : cells)
        if (y + c.y >= config.height) return false;
    return true;
}

float Game::ColumnCentre(const std::vector<Cell>& cells) const {
    if (cells.empty()) return 0.0f;
    const int x0 = cells[0].x;
    float sum = 0.0f;
    for (const Cell& c : cells)
        sum += static_cast<float>(x0) + WrapDiff(static_cast<float>(c.x - x0));
    float m = sum / static_cast<float>(cells.size()) + 0.5f;
    if (config.ring && config.width > 0) {
        const float w = static_cast<float>(config.width);
        m -= w * std::floor(m / w);
    }
    return m;
}

bool Game::IsAttackedColumn(int x) const {
    if (config.sectors.empty()) return true;
    for (const Sector& s : config.sectors)
        if (s.Contains(x, config.width)) return true;
    return false;
}

bool Game::SectorActive(int index) const {
    if (phase != Phase::Attack || index < 0 || index >= static_cast<int>(config.sectors.size()))
        return false;
    return !Waves() || index == wave;
}

bool Game::InActiveSector(int x) const {
    if (config.sectors.empty()) return true;
    for (int i = 0; i < static_cast<int>(config.sectors.size()); ++i)
        if (SectorActive(i) && config.sectors[i].Contains(x, config.width)) return true;
    return false;
}

int Game::WaveSectorCentre() const {
    if (phase != Phase::Attack || config.sectors.empty() || !Waves() || wave < 0 ||
        wave >= static_cast<int>(config.sectors.size()))
        return -1;
    return config.sectors[wave].centre;
}

int Game::PctAbove(int tower) const {
    int n = 0, k = 0;
    for (int x = 0; x < config.width; ++x) {
        if (!IsAttackedColumn(x)) continue;
        ++n;
        if (EvalTop(tower, x) >= config.line) ++k;
    }
    return Share(n, k);
}

int Game::SectorPct(int index) const {
    if (index < 0 || index >= static_cast<int>(config.sectors.size()) || towers.empty()) return 0;
    int n = 0, k = 0;
    for (int x = 0; x < config.width; ++x) {
        if (!config.sectors[index].Contains(x, config.width)) continue;
        ++n;
        if (EvalTop(0, x) >= config.line) ++k;
    }
    return Share(n, k);
}

int Game::OverallPct() const {
    int n = 0, k = 0;
    for (int t = 0; t < static_cast<int>(towers.size()); ++t) {
        for (int x = 0; x < config.width; ++x) {
            if (!IsAttackedColumn(x)) continue;
            ++n;
            if (EvalTop(t, x) >= config.line) ++k;
        }
    }
    return Share(n, k);
}

bool Game::LineComplete() const {
    bool counted = false;
    for (int t = 0; t < static_cast<int>(towers.size()); ++t) {
        for (int x = 0; x < config.width; ++x) {
            if (!IsAttackedColumn(x)) continue;
            counted = true;
            if (EvalTop(t, x) < config.line) return false;
        }
    }
    return counted;
}

Hole* Game::FindHole(int id) {
    for (Hole& h : holes)
        if (h.id == id) return &h;
    return nullptr;
}

const Hole* Game::FindHole(int id) const { return const_cast<Game*>(this)->FindHole(id); }

Target* Game::FindTarget(int id) {
    for (Target& t : targets)
        if (t.id == id) return &t;
    return nullptr;
}

const Target* Game::FindTarget(int id) const { return const_cast<Game*>(this)->FindTarget(id); }

const Piece* Game::GetPiece(int id) const {
    const auto found = pieces.find(id);
    return found == pieces.end() ? nullptr : &found->second;
}

void Game::Sound(Sfx sfx, float value) {
    Event e;
    e.kind = Event::Sound;
    e.sfx = sfx;
    e.value = value;
    events.push_back(std::move(e));
}

void Game::Burst(int tower, const std::vector<Cell>& cells, int count) {
    Event e;
    e.kind = Event::Burst;
    e.tower = tower;
    e.cells = cells;
    e.count = count;
    events.push_back(std::move(e));
}

void Game::FloatAt(int tower, const std::vector<Cell>& cells, const std::string& text) {
    Event e;
    e.kind = Event::Float;
    e.tower = tower;
    e.cells = cells;
    e.text = text;
    events.push_back(std::move(e));
}

void Game::Flash(int tower, const std::vector<Cell>& cells) {
    Event e;
    e.kind = Event::Flash;
    e.tower = tower;
    e.cells = cells;
    events.push_back(std::move(e));
}

void Game::Say(const std::string& text) {
    Event e;
    e.kind = Event::Say;
    e.text = text;
    events.push_back(std::move(e));
}

void Game::Placed(int tower, const std::vector<Cell>& cells) {
    Event e;
    e.kind = Event::Placed;
    e.tower = tower;
    e.cells = cells;
    events.push_back(std::move(e));
    if (phase != Phase::Build) return;
    const bool stands = LineComplete();
    if (stands && !lineStood) Say(Tr("Verteidigungslinie steht!"));
    lineStood = stands;
}

void Game::Banner(const std::string& text, float seconds) {
    Event e;
    e.kind = Event::Banner;
    e.text = text;
    e.value = seconds;
    events.push_back(std::move(e));
}

bool Game::Waves() const {
    if (config.sectors.empty()) return false;
    if (config.fromPack) return config.waves;
    return GetSettings().difficulty == 0;
}

bool Game::PrepAllowed() const {
    if (config.fromPack) return config.prep;
    return GetSettings().difficulty < 2;
}

bool Game::BuildsInAttack() const {
    return !config.fromPack && GetSettings().difficulty == 3;
}

bool Game::FreeRepair() const {
    const Settings& s = GetSettings();
    if (s.repair_mode != 0) return false;
    return config.fromPack || s.difficulty != 3;
}

} // namespace torvane
