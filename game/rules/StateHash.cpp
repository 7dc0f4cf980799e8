// FNV-1a over every field of the rules' state, for comparing runs.
#include "game/rules/StateHash.h"

#include <cstring>
#include <sstream>
#include <string>

namespace torvane {

namespace {

class Hasher {
public:
    uint64_t value = 1469598103934665603ULL;

    void Bytes(const void* data, size_t n) {
        const auto* p = static_cast<const unsigned char*>(data);
        for (size_t i = 0; i < n; ++i) value = (value ^ p[i]) * 1099511628211ULL;
    }
    void Int(int64_t v) { Bytes(&v, sizeof v); }
    void Float(float f) {
        uint32_t bits = 0;
        std::memcpy(&bits, &f, sizeof bits);
        Int(bits);
    }
    void Text(const std::string& s) {
        Int(static_cast<int64_t>(s.size()));
        Bytes(s.data(), s.size());
    }
    void Cells(const std::vector<Cell>& cells) {
        Int(static_cast<int64_t>(cells.size()));
        for (const Cell& c : cells) {
            Int(c.x);
            Int(c.y);
        }
    }
    template <typename T, typename F>
    void List(const std::vector<T>& list, F each) {
        Int(static_cast<int64_t>(list.size()));
        for (const T& item : list) each(item);
    }
};

} // namespace

uint64_t StateHash(const Game& game) {
    Hasher h;
    std::ostringstream rng;
    rng << game.rng;
    h.Text(rng.str());
    h.Int(static_cast<int>(game.phase));
    h.Int(game.level);
    h.Int(game.score);
    h.Float(game.clock);
    h.Float(game.buildLeft);
    const LevelConfig& c = game.config;
    for (int v : {c.towers, c.width, c.height, c.line, c.shots, c.pieces, c.need, c.spareOnes, c.spareTwos,
                  c.ruinRows})
        h.Int(v);
    for (float v : {c.buildTime, c.flightTime, c.interval}) h.Float(v);
    for (bool v : {c.ring, c.fromPack, c.waves, c.prep, c.newTower}) h.Int(v);
    h.List(c.sectors, [&](const Sector& s) {
        h.Int(s.centre);
        h.Int(s.width);
        h.Int(s.letter);
        h.Text(s.label);
    });
    const RoundStats& s = game.stats;
    for (int v : {s.buildScore, s.repairScore, s.held, s.lost, s.levelBonus, s.timeBonus, s.gapCells, s.dropped,
                  s.overallPct, static_cast<int>(s.passed)})
        h.Int(v);
    h.List(s.towerPct, [&](int v) { h.Int(v); });
    h.List(s.sectorPct, [&](int v) { h.Int(v); });
    h.List(game.towers, [&](const Tower& t) {
        h.Int(t.width);
        h.List(t.cells, [&](int v) { h.Int(v); });
        h.Int(t.revision);
    });
    h.Int(static_cast<int64_t>(game.pieces.size()));
    for (const auto& [id, p] : game.pieces) {
        h.Int(id);
        h.Int(p.type);
        h.Int(p.ruin);
        h.Cells(p.cells);
        h.Int(p.tower);
    }
    for (int v : {game.nextPieceId, game.nextShotId, game.activeTower, game.selected, game.cursorX, game.cursorY,
                  game.rotation, game.shotsLeft, game.wave, game.waveShotsLeft, game.bonusPieces})
        h.Int(v);
    h.List(game.supply, [&](char v) { h.Int(v); });
    for (float v : {game.autoEndAt, game.inspectEndAt, game.nextShotAt, game.attackEndAt, game.viewCentre})
        h.Float(v);
    h.List(game.targets, [&](const Target& t) {
        for (int v : {t.id, t.piece, t.tower}) h.Int(v);
        h.Float(t.firedAt);
        h.Float(t.hitAt);
        h.Cells(t.cells);
        h.List(t.preps, [&](const Prep& p) {
            h.Int(p.type);
            h.Cells(p.cells);
        });
    });
    h.List(game.holes, [&](const Hole& o) {
        for (int v : {o.id, o.tower, o.bells}) h.Int(v);
        h.Float(o.openedAt);
        h.Float(o.collapseAt);
        h.Cells(o.cells);
    });
    h.Int(game.focus.kind);
    h.Int(game.focus.id);
    h.Int(game.viewKnown);
    h.List(game.events, [&](const Event& e) {
        h.Int(e.kind);
        h.Int(static_cast<int>(e.sfx));
        h.Float(e.value);
        h.Int(e.tower);
        h.Cells(e.cells);
        h.Int(e.count);
        h.Text(e.text);
    });
    const UndoRecord& u = game.undo;
    for (int v : {static_cast<int>(u.valid), static_cast<int>(u.phase), u.tower, u.piece, u.target,
                  static_cast<int>(u.type), u.rotation, u.x, u.selected, u.points})
        h.Int(v);
    h.Float(u.until);
    h.Cells(u.cells);
    h.Int(game.lineStood);
    return h.value;
}

} // namespace torvane
