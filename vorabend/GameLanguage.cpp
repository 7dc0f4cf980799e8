#include "vorabend/GameLanguage.h"

#include "game/content/Preferences.h"
#include "game/rules/Lang.h"

namespace vorabend {

void FollowGameLanguage() {
    torvane::preferences::Load();
    adv::SetLanguage(torvane::CurrentLanguage() == torvane::Language::German ? adv::Language::German
                                                                               : adv::Language::English);
}

bool KeepLanguage(adv::Language language) {
    torvane::preferences::Load();
    torvane::SetLanguage(language == adv::Language::German ? torvane::Language::German : torvane::Language::English);
    return torvane::preferences::Save();
}

} // namespace vorabend
