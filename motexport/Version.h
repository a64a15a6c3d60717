// The version of motexport, shown in its banner and usage.
#pragma once

constexpr const char* kMotexportVersion = "1.0";
