#pragma once

/// Whether a window could be shown: somebody answers where WAYLAND_DISPLAY or DISPLAY point to. A display on another
/// machine is taken for there, and so is whatever QT_QPA_PLATFORM names.
bool hasDisplay();
