#pragma once
// A window title that stays: the frame loop would otherwise replace it once a second
// with its frame-rate status.
#include <string>

namespace adv {

// Sets the title now and keeps it. Does nothing before an engine exists.
void SetWindowTitle(const std::string& title);

} // namespace adv
