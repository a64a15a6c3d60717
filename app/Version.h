// The version of motbake, shown in the banner and written into every MEL
// script.
#pragma once

// The name the program goes by in its texts, whatever path started it.
constexpr const char* kMotbakeName = "motbake";
constexpr const char* kMotbakeVersion = "1.1";
