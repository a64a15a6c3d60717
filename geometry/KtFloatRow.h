// KtFloatRow: one row of a float matrix, taken out as a value.
#pragma once

#include <iosfwd>

// The row type of both matrix classes (Kt3X3FloatMat::KtRow is a row of
// three floats, Kt4X4FloatMat::KtRow a row of four). A row is a copy: changing
// it does not change the matrix it came from.
template <int N>
class KtFloatRow
{
public:
    KtFloatRow() = default;
    explicit KtFloatRow(const float (&values)[N])
    {
        for (int i = 0; i < N; ++i)
            _v[i] = values[i];
    }

    float& operator[](int i) { return _v[i]; }
    float operator[](int i) const { return _v[i]; }
    const float (&values() const)[N] { return _v; }

    KtFloatRow& scale(float f)
    {
        for (float& v : _v)
            v *= f;
        return *this;
    }
    KtFloatRow& operator/=(float f)
    {
        for (float& v : _v)
            v /= f;
        return *this;
    }
    KtFloatRow& operator-=(const KtFloatRow& other)
    {
        for (int i = 0; i < N; ++i)
            _v[i] -= other._v[i];
        return *this;
    }
    bool operator==(const KtFloatRow& other) const
    {
        for (int i = 0; i < N; ++i)
            if (!(_v[i] == other._v[i]))
                return false;
        return true;
    }
    bool operator!=(const KtFloatRow& other) const { return !(*this == other); }

    // "[", the values separated by two blanks, "]".
    void printOn(std::ostream& out) const;

private:
    float _v[N] = {};
};

template <int N>
std::ostream& operator<<(std::ostream& out, const KtFloatRow<N>& row)
{
    row.printOn(out);
    return out;
}
