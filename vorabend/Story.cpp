#include "vorabend/Story.h"

#include "engine/Music.h"
#include "vorabend/Painting.h"
#include "vorabend/Sounds.h"
#include "vorabend/StoryEnglish.h"

#include <map>
#include <string>

namespace vorabend {

using adv::Facing;
using adv::Hotspot;
using adv::Polygon;
using adv::Scene;
using adv::Script;
using adv::Verb;

namespace {

// One tune through the whole evening, from the title card on.
constexpr const char* kMusic = "vorabend/music/vorabend.mp3";
constexpr float kMusicFade = 1.2f;

// Picking a thing up: it goes into the inventory and out of the scene.
Script PickUp(const std::string& id) {
    return Script().PlaySound(sounds::kPickUp).GiveItem(id).SetHotspotEnabled(id, false);
}

// Places an object with its picture and a hotspot of the same id, so that taking it
// (switching the hotspot off) also takes it out of the picture.
Hotspot& Thing(Scene& scene, const std::string& id, const std::string& name, adv::vf2d at,
               std::shared_ptr<pge::Sprite> sprite, adv::vf2d approach) {
    const float w = float(sprite->width), h = float(sprite->height);
    scene.AddObject(id, at).sprite = std::move(sprite);
    Hotspot& spot = scene.AddRectHotspot(id, name, at.x - 4, at.y - 4, w + 8, h + 8);
    spot.hasApproach = true;
    spot.approach = approach;
    return spot;
}

// A scene with ways out. "Gehe zu" on a way out (or a right click) only walks to its
// approach point; the scene takes the player through once it arrives there.
class Place : public adv::SceneDefinition {
public:
    Hotspot& Exit(Scene& scene, const std::string& id, const std::string& name, const Polygon& shape,
                  adv::vf2d approach, Facing facing, const std::string& toScene, const std::string& entry) {
        Hotspot& h = scene.AddHotspot(id, name, shape);
        h.hasApproach = true;
        h.approach = approach;
        h.approachFacing = facing;
        h.defaultVerb = Verb::Walk;
        exits[id] = {toScene, entry};
        return h;
    }

    void OnUpdate(adv::AdventureGame& game, float) override {
        if (game.runner.Running() || !game.dialogue.empty() || !game.current) {
            chosen.clear();
            return;
        }
        // A click that started no script was a walk: towards a way out, or elsewhere.
        const bool clicked = game.Clicked(0) || game.Clicked(1);
        if (clicked && game.GetMousePos().y < adv::AdventureGame::kPlayHeight)
            chosen = exits.count(game.hoveredHotspot) ? game.hoveredHotspot : std::string();
        if (chosen.empty()) return;
        const Hotspot* h = game.current->Find(chosen);
        const adv::Actor& player = game.Player();
        if (!h || !h->enabled || player.Walking()) return;
        const adv::vf2d there = game.current->walkArea.ClampToArea(h->approach);
        const Way way = exits[chosen];
        chosen.clear();
        if (adv::Distance(player.position, there) > kArrived) return;
        game.PlaySound(sounds::kDoor);
        game.ChangeScene(way.scene, way.entry);
    }

private:
    struct Way {
        std::string scene;
        std::string entry;
    };
    static constexpr float kArrived = 2.0f;
    std::map<std::string, Way> exits; // by hotspot id
    std::string chosen;                // the way out the player is walking to
};

Script Says(const std::string& text) { return Script().Say("player", text); }

class Courtyard : public Place {
public:
    std::string DisplayName() const override { return "Burghof"; }
    void Build(adv::AdventureGame&, Scene& s) override {
        s.painted = painting::Courtyard();
        s.music = kMusic;
        s.walkArea.outer = {{{4, 124}, {436, 124}, {450, 150}, {560, 150}, {572, 174}, {4, 174}}};
        s.walkArea.holes = {
            {{{124, 124}, {186, 124}, {188, 152}, {122, 152}}}, // the well
            {{{226, 124}, {294, 124}, {294, 148}, {226, 148}}}, // the bench
            {{{334, 124}, {418, 124}, {420, 154}, {332, 154}}}, // the hay cart
        };
        s.scaleZone = {124, 174, 0.72f, 1.0f};
        s.SetEntry("default", {80, 160}, Facing::Right);
        s.SetEntry("werkstatt", {30, 150}, Facing::Right);
        s.SetEntry("turm", {489, 158}, Facing::Front);
        s.firstVisitScript.Narrate("Burg Vellwacht, am Abend vor der ersten Belagerung.")
            .Say("player", "Im Osten brennen die Feuer des Feindes. Jemand muss das Leuchtfeuer auf dem Turm entzünden.");

        s.AddRectHotspot("feuer", "Feuer am Horizont", 250, 56, 170, 16).scripts[Verb::Look] =
            Says("Die Lagerfeuer des Feindes. Hunderte.");
        s.AddRectHotspot("turm", "Turm", 446, 8, 96, 86).scripts[Verb::Look] =
            Says("Der Turm. Oben wartet das Leuchtfeuer, das die ganze Vellmark sieht.");
        s.AddRectHotspot("brunnen", "Brunnen", 124, 84, 64, 68).scripts[Verb::Look] =
            Says("Der Brunnen. Das Wasser ist eiskalt.");
        s.AddRectHotspot("karren", "Heukarren", 336, 100, 82, 54).scripts[Verb::Look] =
            Says("Heu für die Pferde. Für ein Feuer ist es zu feucht.");
        s.AddRectHotspot("bank", "Bank", 226, 128, 68, 20).scripts[Verb::Look] = Says("Hier essen die Wachen.");
        Hotspot& bread = Thing(s, "brot", "Brot", {252, 121}, painting::Bread(), {262, 156});
        bread.scripts[Verb::Look] = Says("Ein Laib Brot, noch warm.");
        bread.scripts[Verb::Take] = Script().Say("player", "Das nehme ich mit.").Append(PickUp("brot"));

        Hotspot& door = s.AddRectHotspot("tuer", "Turmtür", 472, 96, 34, 54);
        door.hasApproach = true;
        door.approach = {489, 157};
        door.scripts[Verb::Look] = Says("Eine schwere Eichentür. Dahinter führt die Treppe zum Leuchtfeuer.");
        door.scripts[Verb::Open] = Script().Say("player", "Verschlossen.").SetFlag("tuer_probiert", 1);
        door.useScripts["schluessel"] = Script()
                                            .Say("player", "Der Schlüssel dreht sich schwer, aber er dreht sich.")
                                            .PlaySound(sounds::kDoor)
                                            .TakeItem("schluessel")
                                            .SetHotspotEnabled("tuer", false)
                                            .SetHotspotEnabled("tuer_offen", true)
                                            .SetFlag("tuer_offen", 1);
        s.AddObject("tuer_offen", {474, 98}).sprite = painting::OpenDoor();
        Hotspot& open = Exit(s, "tuer_offen", "Offene Turmtür", Polygon::Rect(472, 96, 34, 54), {489, 157},
                             Facing::Back, "zinne", "treppe");
        open.enabled = false;
        Exit(s, "tor", "Tor zur Schmiede", Polygon::Rect(6, 78, 40, 48), {22, 146}, Facing::Left, "werkstatt", "hof");
    }
};

class Smithy : public Place {
public:
    std::string DisplayName() const override { return "Schmiede"; }
    void Build(adv::AdventureGame&, Scene& s) override {
        s.painted = painting::Smithy();
        s.music = kMusic;
        s.walkArea.outer = {{{8, 116}, {352, 116}, {372, 128}, {380, 174}, {4, 174}}};
        s.walkArea.holes = {
            {{{14, 116}, {104, 116}, {104, 128}, {14, 128}}},   // the forge
            {{{146, 124}, {196, 124}, {196, 152}, {146, 152}}}, // the anvil
            {{{244, 116}, {344, 116}, {344, 134}, {244, 134}}}, // the workbench
            {{{284, 134}, {318, 134}, {318, 154}, {284, 154}}}, // the oil barrel before it
            {{{80, 146}, {118, 146}, {118, 166}, {80, 166}}},   // the coal box
        };
        s.scaleZone = {116, 174, 0.8f, 1.05f};
        s.SetEntry("default", {356, 150}, Facing::Left);
        s.SetEntry("hof", {356, 150}, Facing::Left);
        s.firstVisitScript.Say("player", "Die Schmiede. Der Meister ist schon oben auf der Mauer.");

        Hotspot& forge = s.AddRectHotspot("esse", "Esse", 16, 8, 88, 114);
        forge.scripts[Verb::Look] = Says("Die Esse glüht noch.");
        forge.useScripts["lappen"] = Says("Dann brennt er mir in der Hand ab. Besser oben am Leuchtfeuer.");
        forge.useScripts["oellappen"] = forge.useScripts["lappen"];
        s.AddRectHotspot("kohlen", "Kohlenkiste", 80, 138, 38, 28).scripts[Verb::Look] = Says("Schmiedekohle. Zu schwer für die Treppe.");
        s.AddRectHotspot("amboss", "Amboss", 144, 118, 54, 34).scripts[Verb::Look] = Says("Der Amboss, kalt und schwer.");
        Hotspot& steel = Thing(s, "feuerstahl", "Feuerstahl", {162, 114}, painting::FireSteel(), {170, 160});
        steel.scripts[Verb::Look] = Says("Feuerstahl und Stein.");
        steel.scripts[Verb::Take] = PickUp("feuerstahl");
        s.AddRectHotspot("werkbank", "Werkbank", 244, 100, 100, 34).scripts[Verb::Look] = Says("Die Werkbank, voller Späne.");
        Hotspot& barrel = s.AddRectHotspot("oelfass", "Ölfass", 286, 116, 30, 36);
        barrel.hasApproach = true;
        barrel.approach = {300, 160};
        barrel.scripts[Verb::Look] = Says("Ein Fass Lampenöl.");
        barrel.scripts[Verb::Take] = Says("Viel zu schwer.");
        barrel.scripts[Verb::Open] = Says("Es ist schon offen. Es riecht nach Lampenöl.");
        barrel.useScripts["lappen"] =
            Script().Say("player", "Ich tränke den Lappen im Öl.").TakeItem("lappen").PlaySound(sounds::kPickUp).GiveItem("oellappen");
        Hotspot& rag = Thing(s, "lappen", "Lappen", {300, 96}, painting::Rag(), {272, 142});
        rag.scripts[Verb::Look] = Says("Ein alter Lappen.");
        rag.scripts[Verb::Take] = PickUp("lappen");
        Exit(s, "tuer", "Tür zum Hof", Polygon::Rect(356, 54, 28, 74), {366, 140}, Facing::Right, "hof", "werkstatt");
    }
};

class Battlement : public Place {
public:
    std::string DisplayName() const override { return "Turmspitze"; }
    void Build(adv::AdventureGame&, Scene& s) override {
        s.painted = painting::Battlement();
        s.music = kMusic;
        s.walkArea.outer = {{{6, 126}, {378, 126}, {380, 174}, {4, 174}}};
        s.walkArea.holes = {
            {{{246, 124}, {318, 124}, {318, 146}, {246, 146}}}, // the beacon's plinth
            {{{20, 146}, {86, 146}, {92, 172}, {16, 172}}},     // the stair hatch
        };
        s.scaleZone = {126, 174, 0.85f, 1.05f};
        s.SetEntry("default", {104, 162}, Facing::Right);
        s.SetEntry("treppe", {104, 162}, Facing::Right);
        s.firstVisitScript.Say("player", "Das Leuchtfeuer. Trockenes, grobes Holz.");

        s.AddRectHotspot("lager", "Feindliche Lager", 150, 78, 230, 18).scripts[Verb::Look] =
            Says("So viele Feuer. Morgen sind sie hier.");
        s.AddRectHotspot("mond", "Mond", 308, 18, 24, 24).scripts[Verb::Look] = Says("Eine schmale Sichel.");
        Hotspot& beacon = s.AddRectHotspot("leuchtfeuer", "Leuchtfeuer", 250, 80, 66, 64);
        beacon.hasApproach = true;
        beacon.approach = {282, 158};
        beacon.scripts[Verb::Look] = Script().IfFlag(
            "lappen_drin", Says("Holz und der ölige Lappen. Jetzt fehlt nur ein Funke."),
            Says("Trockenes Holz, aber zu grob, um einen Funken zu fangen."));
        beacon.useScripts["lappen"] = Says("Ein trockener Lappen brennt zu schnell weg. Er müsste in Öl getränkt sein.");
        beacon.useScripts["oellappen"] =
            Script().Say("player", "Ich stopfe den Lappen unter die Scheite.").TakeItem("oellappen").SetFlag("lappen_drin", 1);
        beacon.useScripts["feuerstahl"] = Script().IfFlag(
            "lappen_drin",
            Script()
                .Say("player", "Funken... der Lappen fängt Feuer!")
                .PlaySound(sounds::kFire)
                .SetHotspotEnabled("flammen", true)
                .Wait(1.0f)
                .Say("player", "Brenn, Feuer. Weck die Vellmark.")
                .Wait(1.5f)
                .EndGame("Das Leuchtfeuer lodert über der Vellmark. Von Hügel zu Hügel flammen die Antworten auf. "
                         "Morgen kommt der Feind, aber die Vellmark ist gewarnt."),
            Says("Die Funken verglühen auf dem groben Holz. Ich brauche etwas, das leichter brennt."));
        s.AddObject("flammen", {247, 36}).sprite = painting::Flames();
        Hotspot& flames = s.AddRectHotspot("flammen", "Leuchtfeuer", 250, 40, 66, 50);
        flames.enabled = false;
        flames.scripts[Verb::Look] = Says("Es brennt!");
        Exit(s, "luke", "Treppe hinunter", {{{20, 146}, {86, 146}, {92, 172}, {16, 172}}}, {104, 160}, Facing::Left, "hof",
             "turm");
    }
};

// The title card, until a click or a key.
class Title : public adv::ScreenDefinition {
public:
    void OnEnter(adv::AdventureGame&) override { adv::Music::Play(kMusic, true, kMusicFade); }
    void Draw(adv::AdventureGame& game, float elapsed) override { painting::DrawTitle(game, elapsed); }
};

adv::Actor Guard() {
    adv::Actor a;
    a.id = "hella";
    a.name = "Hella";
    a.scene = "hof";
    a.position = {444, 160};
    a.facing = Facing::Left;
    a.defaultVerb = Verb::Talk;
    a.look.coat = {140, 54, 44};
    a.look.hair = {220, 180, 90};
    a.look.speech = {255, 200, 150};
    a.scripts[Verb::Look] = Says("Hella, die Torwache. Sie sieht müde und hungrig aus.");
    a.scripts[Verb::Talk] = Script().Say("hella", "Na, Torvane?").StartDialogue("hella");
    a.useScripts["brot"] = Script()
                               .Say("hella", "Brot! Du bist ein Schatz, Torvane.")
                               .TakeItem("brot")
                               .Say("hella", "Hier, der Turmschlüssel. Zünde das Feuer an, bevor es zu spät ist.")
                               .PlaySound(sounds::kPickUp)
                               .GiveItem("schluessel")
                               .SetFlag("schluessel_erhalten", 1);
    return a;
}

adv::DialogueOption Option(const std::string& text, const Script& script) {
    adv::DialogueOption o;
    o.text = text;
    o.script = script;
    return o;
}

adv::Dialogue GuardTalk() {
    adv::Dialogue d;
    d.id = "hella";
    auto& start = d.nodes["start"];
    adv::DialogueOption who = Option("Wer bist du?", Script().Say("hella", "Hella, Torwache. Seit Sonnenaufgang auf den Beinen."));
    who.once = true;
    adv::DialogueOption outside = Option("Was siehst du da draußen?",
                                Script()
                                    .Say("hella", "Feuer. Hunderte. Morgen stehen sie vor unserer Mauer.")
                                    .Say("hella", "Und die Vellmark schläft, solange das Leuchtfeuer kalt bleibt."));
    outside.once = true;
    adv::DialogueOption door = Option("Warum ist die Turmtür verschlossen?",
                             Script()
                                 .Say("hella", "Befehl des Hauptmanns: niemand verschwendet das Leuchtfeuer.")
                                 .Say("hella", "Aber der Hauptmann ist fort, und ich habe seit dem Morgen nichts gegessen."));
    door.once = true;
    door.requiresFlag = "tuer_probiert";
    adv::DialogueOption key = Option("Gib mir den Turmschlüssel.",
                            Script().Say("hella", "Nicht mit leerem Magen. Ich denke nicht gut, wenn ich hungrig bin."));
    key.forbidsFlag = "schluessel_erhalten";
    adv::DialogueOption bye = Option("Bis später.", Script().Say("hella", "Pass auf dich auf."));
    bye.next = "$exit";
    start = {who, outside, door, key, bye};
    return d;
}

void AddItem(adv::AdventureGame& game, const std::string& id, const std::string& name, const std::string& look) {
    adv::Item item;
    item.id = id;
    item.name = name;
    item.lookText = look;
    item.sprite = painting::Icon(id);
    game.AddItem(item);
}

} // namespace

void BuildStory(adv::AdventureGame& game) {
    adv::AddEnglish(StoryEnglish());
    sounds::AddTo(game);
    adv::Actor hero;
    hero.id = "player";
    hero.name = "Torvane";
    hero.look.coat = {58, 96, 110};
    hero.stepSound = sounds::kStep;
    game.AddActor(hero);
    game.SetPlayer("player");
    game.AddActor(Guard());
    game.AddDialogue(GuardTalk());
    AddItem(game, "brot", "Brot", "Ein Laib Brot, noch warm.");
    AddItem(game, "schluessel", "Turmschlüssel", "Der Schlüssel zur Turmtür.");
    AddItem(game, "lappen", "Lappen", "Ein alter, trockener Lappen.");
    AddItem(game, "oellappen", "Öllappen", "Ein Lappen, triefend vor Lampenöl.");
    AddItem(game, "feuerstahl", "Feuerstahl", "Feuerstahl und Stein. Damit schlägt man Funken.");
    game.RegisterScene("hof", std::make_unique<Courtyard>());
    game.RegisterScene("werkstatt", std::make_unique<Smithy>());
    game.RegisterScene("zinne", std::make_unique<Battlement>());
    game.SetStartScene("hof");
    game.AddIntroScreen(std::make_unique<Title>());
}

} // namespace vorabend
