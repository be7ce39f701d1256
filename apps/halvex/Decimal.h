#pragma once

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// Numbers as people write them: decimal, with 50 digits to calculate with, of which 16 are shown.
using Decimal = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<50>,
                                              boost::multiprecision::et_off>;

inline constexpr int kShownDigits = 16;
/// Numbers of 10^1000 and more are too large, smaller ones than 10^-999 are 0.
inline constexpr int kLargestExponent = 999;

/// Whether the number is too large for this calculator.
bool isTooLarge(const Decimal& number);
/// Whether the number is too close to 0 to be told from it.
bool isTooSmall(const Decimal& number);

/// The number in 16 digits, rounded half away from zero: "-1234.5", or "1.5e+20" when it has more
/// than 16 digits before the point, or more than six zeros behind it before the first other digit.
std::string decimalText(const Decimal& number);

/// What is written: digits with at most one point, a minus sign before them, an exponent ("e-7")
/// behind them. Nothing for any other text, for one of more than 1000 characters and for a number
/// that is too large.
std::optional<Decimal> decimalOf(std::string_view text);

} // namespace apps
