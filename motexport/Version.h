// The version of motexport, shown in its banner and usage.
#pragma once

// The name the program goes by in its texts, whatever path started it.
constexpr const char* kMotexportName = "motexport";
constexpr const char* kMotexportVersion = "1.0";
