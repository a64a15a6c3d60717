// Angle constants shared by the readers, the writers and every pose.
#pragma once

constexpr double kKtPi = 3.141592653589793;
// pi/180 in double; single-precision callers round only after the product.
constexpr double kKtRadiansPerDegree = 0.017453292519943295;
