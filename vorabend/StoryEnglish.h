#pragma once
// The English texts of "Der Vorabend", by their German wording.
#include <map>
#include <string>

namespace vorabend {

const std::map<std::string, std::string>& StoryEnglish();

} // namespace vorabend
