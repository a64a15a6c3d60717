// The version of rigbake, shown in the banner and written into every rig
// script.
#pragma once

constexpr const char* kRigbakeVersion = "1.0";
