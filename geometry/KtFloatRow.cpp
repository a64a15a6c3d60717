// Print form of a matrix row; only the two row sizes of the matrices exist.
#include "geometry/KtFloatRow.h"

#include <ostream>

template <int N>
void KtFloatRow<N>::printOn(std::ostream& out) const
{
    out << "[";
    for (int i = 0; i < N; ++i)
    {
        if (i > 0)
            out << "  ";
        out << _v[i];
    }
    out << "]";
}

template class KtFloatRow<3>;
template class KtFloatRow<4>;
