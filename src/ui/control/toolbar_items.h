// The buttons of the control bar, in their order.
#pragma once

#include <span>

#include "ui/form/toolbar.h"

namespace tessary {

// As the bar shows them at first: stopped, unfolded, pictures at their own size.
std::span<const ToolbarItem> ControlBarItems();

// What the toolbar draws them with.
ToolbarImages ControlBarImages();

}  // namespace tessary
