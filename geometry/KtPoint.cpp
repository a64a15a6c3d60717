// KtPoint stream output.
#include "geometry/KtPoint.h"

#include <ostream>

std::ostream& operator<<(std::ostream& out, const KtPoint& p)
{
    return out << "(" << p.x << ", " << p.y << ", " << p.z << ")";
}
