#include "engine/adventure/Verb.h"

namespace adv {

std::string VerbName(Verb verb) {
    switch (verb) {
    case Verb::Walk: return "Gehe zu";
    case Verb::Open: return "Oeffne";
    case Verb::Take: return "Nimm";
    case Verb::Use: return "Benutze";
    case Verb::Close: return "Schliesse";
    case Verb::Look: return "Schau an";
    case Verb::Push: return "Druecke";
    case Verb::Give: return "Gib";
    case Verb::Talk: return "Rede mit";
    case Verb::Pull: return "Ziehe";
    }
    return "?";
}

std::string Preposition(Verb verb) {
    if (verb == Verb::Use) return "mit";
    if (verb == Verb::Give) return "an";
    return "";
}

bool NeedsSecondObject(Verb verb) { return verb == Verb::Use || verb == Verb::Give; }

std::string FallbackText(Verb verb) {
    switch (verb) {
    case Verb::Open: return "Das laesst sich nicht oeffnen.";
    case Verb::Take: return "Das kann ich nicht mitnehmen.";
    case Verb::Use: return "So funktioniert das nicht.";
    case Verb::Close: return "Das laesst sich nicht schliessen.";
    case Verb::Look: return "Da ist nichts Besonderes dran.";
    case Verb::Push: return "Da bewegt sich nichts.";
    case Verb::Give: return "Das will bestimmt niemand haben.";
    case Verb::Talk: return "Damit kann ich schlecht reden.";
    case Verb::Pull: return "Das gibt keinen Millimeter nach.";
    default: return "Das bringt nichts.";
    }
}

} // namespace adv
