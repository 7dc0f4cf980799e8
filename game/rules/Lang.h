#pragma once
// German is the source language and the key of the English table.
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace torvane {

// The credit lines of the tools behind the program, keys of the table like every
// other text: programming, graphics (the painter in tools/ that makes every picture), music, thanks.
inline constexpr const char* kCreditProgramming = "C++17, X11 und OpenGL";
inline constexpr const char* kCreditGraphics = "Alle Bilder gemalt von tools/paint-world";
inline constexpr const char* kCreditMusic = "Klangsynthese, SDL2 und mpg123";
inline constexpr const char* kCreditThanks = "GoogleTest, Google Benchmark und Debian";

enum class Language : int32_t { German = 0, English = 1 };

Language CurrentLanguage();
void SetLanguage(Language language);

// The text of a German key in the current language.
std::string Tr(const std::string& key);
// Tr, then {0}, {1}, ... replaced by the arguments in turn.
std::string Trf(const std::string& key, const std::vector<std::string>& args);
// A text with a count: the key, or its translation, holds the form for one and the form
// for any other number, split by "|" (a language whose forms are alike needs no "|");
// {0} becomes the count.
std::string Trn(const std::string& key, long long count);
// One digit after the decimal separator of the language, halves away from zero.
std::string Decimal(float value);
// The compass letter as shown: 'O' is 'E' in English.
char DirectionLetter(char letter);
// Keys asked for in English without a translation.
const std::set<std::string>& MissingTranslations();

} // namespace torvane
