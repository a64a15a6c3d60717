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

// The text that the document's writer gives.
template <class Document>
std::string writtenText(const Document& document)
{
    std::ostringstream out;
    document.printOn(out);
    return out.str();
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
