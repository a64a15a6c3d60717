// The MEL script that sets up Maya's input device and imports the MOV file.
#pragma once

#include "toolkit/KtStr.h"

// The filter names given with -filter, separated by blanks, tabs or line
// ends; empty when none were given.
extern KtStr theFilterText;
