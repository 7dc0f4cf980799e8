#pragma once
// The adventure's two languages. German is the source language and the key of one table of
// English texts: the framework's own texts are in it from the start, and an adventure adds
// its story's texts with AddEnglish.
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace adv {

enum class Language : int32_t { German = 0, English = 1 };

// English until the program says otherwise.
Language CurrentLanguage();
void SetLanguage(Language language);

// Adds German keys with their English texts to the table; a key already there keeps its text.
void AddEnglish(const std::map<std::string, std::string>& pairs);
// The text of a German key in the current language; a key without English text is said once
// on the error stream and shown in German.
std::string Tr(const std::string& key);
// Tr, then {0}, {1}, ... replaced by the arguments in turn.
std::string Trf(const std::string& key, const std::vector<std::string>& args);
// Keys asked for in English without a translation.
const std::set<std::string>& MissingTranslations();

} // namespace adv
