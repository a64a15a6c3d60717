// Axis-order words and axis codes.
#include "asf/KaAxisOrder.h"

#include <cctype>

#include "toolkit/KtError.h"

namespace
{

constexpr int kOrderLength = 3;

int axisOfLetter(char letter)
{
    switch (std::toupper(static_cast<unsigned char>(letter)))
    {
    case 'X':
        return kAxisX;
    case 'Y':
        return kAxisY;
    case 'Z':
        return kAxisZ;
    default:
        return 0;
    }
}

} // namespace

// Only the first three characters count, so "XYZW" reads as XYZ; a shorter
// word fails on the terminator like any other wrong letter.
bool KaAxisOrderFromWord(const char* word, KtArray<int>* order)
{
    order->_clear();
    if (!word || !*word)
    {
        KtError("Unable to read axis orientation order.");
        return false;
    }
    KtArray<int> codes(kOrderLength);
    for (int i = 0; i < kOrderLength; ++i)
    {
        codes[i] = axisOfLetter(word[i]);
        if (codes[i] == 0)
        {
            KtError("Invalid axis specification.");
            return false;
        }
    }
    *order = codes;
    return true;
}

const char* KaAxisName(int code)
{
    switch (code)
    {
    case kAxisX:
        return "x";
    case kAxisY:
        return "y";
    case kAxisZ:
        return "z";
    default:
        return "";
    }
}
