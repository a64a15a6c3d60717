// The version of motbake, shown in the banner and written into every MEL
// script.
#pragma once

constexpr const char* kMotbakeVersion = "1.1";
