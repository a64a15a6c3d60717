// Skeletons and motions for the converter's tests, read from inline text.
#pragma once

#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "support/test_helpers.h"

// Reads the text; a test fails when the reader reports anything.
template <class Document>
Document documentFrom(const std::string& text)
{
    Document document;
    std::istringstream in(text);
    document.scanFrom(in);
    EXPECT_EQ("", printedChain()) << text;
    return document;
}

inline KaASF skeletonFrom(const std::string& text)
{
    return documentFrom<KaASF>(text);
}

// A motion from the text of its fields, in degrees unless told otherwise.
inline KaAMC motionFrom(const std::string& fields,
                        const std::string& units = "DEGREES")
{
    return documentFrom<KaAMC>(":FULLY-SPECIFIED\n:" + units + "\n" + fields);
}

// A skeleton file: its :bonedata and :hierarchy sections are given, the rest
// is fixed (radians, the given length unit, root order as given).
inline std::string skeletonText(const std::string& rootOrder,
                                const std::string& bones,
                                const std::string& hierarchy,
                                const std::string& lengthUnit = "1")
{
    return ":version 1.10\n:name test\n:units\n  mass 1.0\n  length " +
           lengthUnit + "\n  angle rad\n:root\n  order " + rootOrder +
           "\n  axis XYZ\n  position 0 0 0\n  orientation 0 0 0\n"
           ":bonedata\n" +
           bones + ":hierarchy\n  begin\n" + hierarchy + "  end\n";
}

// One bone block on one line.
inline std::string boneBlock(
    const std::string& name,
    const std::string& dofs,
    const std::string& geometry = "direction 1 0 0 length 1 axis 0 0 0 XYZ")
{
    return "  begin name " + name + " " + geometry +
           (dofs.empty() ? "" : " dof " + dofs) + " end\n";
}
