#pragma once

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// A decimal floating-point number. Calculations keep 50 digits, of which 16 are displayed.
using Decimal = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<50>,
                                              boost::multiprecision::et_off>;

inline constexpr int kDisplayDigits = 16;
/// Magnitudes of 10^1000 and above overflow; magnitudes below 10^-999 underflow to 0.
inline constexpr int kMaxExponent = 999;

bool overflows(const Decimal& number);
bool underflows(const Decimal& number);

/// Formats @p number with 16 digits, rounded half away from zero: "-1234.5". Uses an exponent
/// ("1.5e+20") if there are more than 16 digits before the decimal point, or more than six zeros
/// between the point and the first nonzero digit.
std::string formatDecimal(const Decimal& number);

/// Parses digits with at most one point, an optional leading minus sign and an optional exponent
/// ("e-7"). Returns std::nullopt for any other text, for text of more than 1000 characters and for
/// a number that overflows.
std::optional<Decimal> parseDecimal(std::string_view text);

} // namespace apps
