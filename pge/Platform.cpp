#include "pge/Platform.h"

namespace pge {

PixelEngine* Platform::ptrPGE = nullptr;
std::unique_ptr<Platform> platform;
std::map<size_t, uint8_t> mapKeys;

} // namespace pge
