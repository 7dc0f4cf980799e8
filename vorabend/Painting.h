#pragma once
// The pictures of "Der Vorabend", painted by code at start: three backgrounds, the
// things lying about, the items' icons and the title card.
#include "pge/PixelEngine.h"
#include "pge/Sprite.h"

#include <memory>
#include <string>

namespace vorabend::painting {

constexpr int kCourtyardWidth = 576;
constexpr int kRoomWidth = 384;
constexpr int kPlayHeight = 176;

std::shared_ptr<pge::Sprite> Courtyard();
std::shared_ptr<pge::Sprite> Smithy();
std::shared_ptr<pge::Sprite> Battlement();
// The open tower door, laid over the closed one.
std::shared_ptr<pge::Sprite> OpenDoor();
std::shared_ptr<pge::Sprite> Bread();
std::shared_ptr<pge::Sprite> Rag();
std::shared_ptr<pge::Sprite> FireSteel();
std::shared_ptr<pge::Sprite> Flames();
// Inventory icons, 28 by 20: brot, schluessel, lappen, oellappen, feuerstahl.
std::shared_ptr<pge::Sprite> Icon(const std::string& item);
// The whole screen: the tower against the evening sky, with the title.
void DrawTitle(pge::PixelEngine& engine, float elapsed);

} // namespace vorabend::painting
