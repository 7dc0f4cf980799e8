#include "pge/Renderer.h"

namespace pge {

PixelEngine* Renderer::ptrPGE = nullptr;
std::unique_ptr<Renderer> renderer;

} // namespace pge
