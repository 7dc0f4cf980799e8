#pragma once
// Writes a sprite as an uncompressed PNG file (deflate stored blocks), with alpha.
#include "pge/Sprite.h"

#include <string>

namespace adv::screenshot {

// False for an empty sprite (no file is touched) or when the file cannot be written. The
// file is written as a save is: a FIFO or an old picture in its place is replaced whole.
bool SavePng(const pge::Sprite& sprite, const std::string& path);

} // namespace adv::screenshot
