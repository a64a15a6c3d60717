// Skeletons and motions for the converter's tests, read from inline text.
#pragma once

#include <string>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"

// Reads the text; a test fails when the reader reports anything.
KaASF skeletonFrom(const std::string& text);
KaAMC motionFrom(const std::string& text);

// A skeleton file: its :bonedata and :hierarchy sections are given, the rest
// is fixed (radians, the given length unit, root order as given).
std::string skeletonText(const std::string& rootOrder,
                         const std::string& bones,
                         const std::string& hierarchy,
                         const std::string& lengthUnit = "1");
// One bone block on one line.
std::string boneBlock(
    const std::string& name,
    const std::string& dofs,
    const std::string& geometry = "direction 1 0 0 length 1 axis 0 0 0 XYZ");
