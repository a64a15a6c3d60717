// Skeletons and motions for the converter's tests, read from inline text.
#include "documents.h"

#include <sstream>

#include <gtest/gtest.h>

#include "support/test_helpers.h"

KaASF skeletonFrom(const std::string& text)
{
    KaASF asf;
    std::istringstream in(text);
    asf.scanFrom(in);
    EXPECT_EQ("", printedChain()) << text;
    return asf;
}

KaAMC motionFrom(const std::string& text)
{
    KaAMC amc;
    std::istringstream in(text);
    amc.scanFrom(in);
    EXPECT_EQ("", printedChain()) << text;
    return amc;
}

std::string skeletonText(const std::string& rootOrder,
                         const std::string& bones,
                         const std::string& hierarchy,
                         const std::string& lengthUnit)
{
    return ":version 1.10\n"
           ":name test\n"
           ":units\n  mass 1.0\n  length " +
           lengthUnit +
           "\n  angle rad\n"
           ":root\n  order " +
           rootOrder +
           "\n  axis XYZ\n  position 0 0 0\n  orientation 0 0 0\n"
           ":bonedata\n" +
           bones + ":hierarchy\n  begin\n" + hierarchy + "  end\n";
}

std::string boneBlock(const std::string& name,
                      const std::string& dofs,
                      const std::string& geometry)
{
    return "  begin name " + name + " " + geometry +
           (dofs.empty() ? "" : " dof " + dofs) + " end\n";
}
