// The version of rigbake, shown in the banner and written into every rig
// script.
#pragma once

// The name the program goes by in its texts, whatever path started it.
constexpr const char* kRigbakeName = "rigbake";
constexpr const char* kRigbakeVersion = "1.0";
