// Positions of translating bodies are pinned by the known captures converted
// end to end; radians are in none of them.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "app/MovWriter.h"
#include "support/documents.h"

// A root with rotations only gives only its rotation values; radians stay
// radians, copied as read in DOF order; a body absent from a frame adds
// nothing to its line.
TEST(MovWriter, RotationValuesAreCopiedAsReadInDofOrder)
{
    KaASF asf = skeletonFrom(
        skeletonText("RZ RX",
                     boneBlock("arm", "ry rx") + boneBlock("leg", "rz"),
                     "    root arm leg\n"));
    KaAMC amc = motionFrom("15\narm 1.5e-07 -2.25\nroot 3.14159265 "
                           "0.000123456789\nleg 1\n16\narm 7 8\n",
                           "RADIANS");
    std::ostringstream out;
    writeMOVData(out, asf, amc, 30);
    EXPECT_EQ("0.5 3.14159 0.000123457 1.5e-07 -2.25 1 \n0.533333 7 8 \n",
              out.str());
}
