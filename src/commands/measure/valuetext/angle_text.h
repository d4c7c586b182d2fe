// Angles: radians inside, degrees-minutes-seconds text on the wire, both counted in tenths of an arc second in between.
//   "123.04056" is 123 degrees 4 minutes 5.6 seconds; "-0.30000" is minus 30 minutes.
// Pure functions: any thread, no heap, no exception.
#ifndef QXCM_COMMANDS_MEASURE_VALUETEXT_ANGLE_TEXT_H
#define QXCM_COMMANDS_MEASURE_VALUETEXT_ANGLE_TEXT_H

#include <cstddef>
#include <string_view>

namespace qxcm {

/// Bytes of every buffer that an angle or a number is formatted into.
constexpr std::size_t kValueTextSize = 64;

/// Writes an angle (radians, any sign and size) as text, rounded to tenths of a second, half away from zero. Whole
/// turns are dropped and the sign is kept: -10 degrees is "-10.00000", 370 degrees "10.00000".
/// An angle that is infinite, not a number, or beyond 2.7e301 radians is written "0.00000".
/// Returns `buffer`; the text is cut at `size` bytes, its terminating zero included.
char* FormatAngleDms(char* buffer, std::size_t size, double radians);

/// Rounds an angle (radians) to a multiple of a resolution (arc seconds, 0.1 to 60.0) and drops whole turns; the sign
/// is kept. The angle is first cut to tenths of a second, so 10.94 seconds, like 10.96, is 11 at a resolution of 1.
/// An angle that FormatAngleDms cannot count gives 0. A resolution below 0.1, or not a number, counts as 0.1; one above
/// a turn as a turn.
double RoundAngle(double radians, double resolution_seconds);

/// Reads the text of an angle into `radians`. With `pad_fraction` the digits behind the point may be fewer than five
/// (zeros are added), more (they are cut) or missing with their point. Minutes and seconds above 59 are taken as they
/// stand; degrees above 2147483647 count as 2147483647. False leaves `radians` alone: the text is no angle.
bool ParseAngleDms(std::string_view text, bool pad_fraction, double* radians);

}  // namespace qxcm

#endif
