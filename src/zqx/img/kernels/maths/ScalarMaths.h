// Powers, logarithms and circular functions of single numbers, for tables and parameters; vectors have Maths-inl.h.
//
// The functions of a system's mathematics library differ in their last bits from one system, and from one processor, to
// the next. These are sums, products and quotients of doubles in a written order, and so the same everywhere. Arguments
// are reduced to the neighbourhood of a place whose value a table has, as P. T. P. Tang did (Table-driven
// implementation of the exponential function, 1989, and of the logarithm function, 1990), the rest is a few terms of
// the Taylor series, and whatever a last bit hangs on is carried in two doubles (T. J. Dekker, A floating-point
// technique for extending the available precision, 1971).
//
// Results are within 0.52 units in the last place of the exact ones where nothing else is said, against the 0.5 of
// correct rounding. Rounded once more to single precision, all but one in some hundred million are the nearest float.
//
// Infinities, zeros and what is not a number are as in the C standard (Annex F). Thread-safe.
#pragma once

namespace zqx::img::kernels::maths {

/// e^x. A result below the smallest normal double is within 1 unit of its last place.
double exp(double x);

/// 2^x, exact for whole numbers.
double exp2(double x);

/// The natural logarithm.
double log(double x);

/// The decimal logarithm.
double log10(double x);

/// x^y. A result below the smallest normal double is within 1 unit of its last place.
double pow(double x, double y);

/// x^y in single precision, by way of the other: the float nearest to the exact power, but for chances as above.
float pow(float x, float y);

/// @name Circular functions of an angle in radians
/// Angles beyond a hundred thousand have no value: the result is not a number.
/// @{
double sin(double x);
double cos(double x);
double tan(double x);
/// @}

} // namespace zqx::img::kernels::maths
