// Element-type traits shared by every family.
#pragma once

#include <cstdint>
#include <type_traits>

#include "vrks.h"

namespace vrks {

using int128 = __int128;
using uint128 = unsigned __int128;

template <class T> struct is_complex : std::false_type {};
template <> struct is_complex<Vrk8sc> : std::true_type {};
template <> struct is_complex<Vrk16sc> : std::true_type {};
template <> struct is_complex<Vrk32sc> : std::true_type {};
template <> struct is_complex<Vrk64sc> : std::true_type {};
template <> struct is_complex<Vrk32fc> : std::true_type {};
template <> struct is_complex<Vrk64fc> : std::true_type {};
template <class T> inline constexpr bool is_complex_v = is_complex<T>::value;

// The type of one part of a complex element, or the type itself.
template <class T> struct part { using type = T; };
template <class T> requires is_complex_v<T> struct part<T> { using type = decltype(T{}.re); };
template <class T> using part_t = typename part<T>::type;

// Integer traits that also cover the 128-bit working types.
template <class T> inline constexpr bool is_int_v = std::is_integral_v<T>;
template <> inline constexpr bool is_int_v<int128> = true;
template <> inline constexpr bool is_int_v<uint128> = true;
template <class T> inline constexpr bool is_signed_int_v = std::is_signed_v<T>;
template <> inline constexpr bool is_signed_int_v<int128> = true;
template <> inline constexpr bool is_signed_int_v<uint128> = false;
template <class T> inline constexpr int bits_v = int(sizeof(T) * 8);

template <class T> struct to_unsigned { using type = std::make_unsigned_t<T>; };
template <> struct to_unsigned<int128> { using type = uint128; };
template <> struct to_unsigned<uint128> { using type = uint128; };
template <class T> using to_unsigned_t = typename to_unsigned<T>::type;

template <class T> constexpr T int_max() {
  if constexpr (is_signed_int_v<T>) return T((uint128(1) << (bits_v<T> - 1)) - 1);
  else return T(~T(0));
}
template <class T> constexpr T int_min() {
  if constexpr (is_signed_int_v<T>) return T(-int_max<T>() - 1);
  else return T(0);
}

}  // namespace vrks
