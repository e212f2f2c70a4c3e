// IES profiles: the LM-63 text read into a candela table, the table read
// between its angles and round its symmetries, and the files that are not
// profiles refused with the line that is wrong.
#include "standin/ies_profile.h"

#include "support/exceptions.h"
#include "support/failures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Velorn
{
namespace Standin
{
namespace
{

// Two halves alike (horizontal angles 0 to 180), a tilt table to read
// past, commas between angles and a candela multiplier of 2.
const char* const bilateral = "IESNA:LM-63-2002\n"
							  "[TEST] bilateral\n"
							  "TILT=INCLUDE\n"
							  "1\n"
							  "3\n"
							  "0 45 90\n"
							  "1 0.9 0.8\n"
							  "1 -1 2 3 3 1 2 0 0 0\n"
							  "1 1 50\n"
							  "0, 45, 90\n"
							  "0 90 180\n"
							  "100 80 0\n"
							  "60 40 0\n"
							  "20 10 0\n";

// Four quadrants alike (0 to 90), Windows line ends.
const char* const quadrant = "IESNA:LM-63-1995\r\nTILT=NONE\r\n1 1000 1 2 2 1 2 0 0 0\r\n1 1 0\r\n0 90\r\n0 90\r\n"
							 "10 0\r\n30 0\r\n";

// A full circle that stops short of 360, and one vertical angle.
const char* const circle = "TILT=NONE\n1 1000 1 1 3 1 2 0 0 0\n1 1 0\n0\n0 120 240\n30 60 90\n";

TEST(IesProfile, CandelaBetweenTheAnglesAndRoundTheSymmetries)
{
	const IesProfile b = IesProfile::parse(bilateral, "b.ies");
	const IesProfile q = IesProfile::parse(quadrant, "q.ies");
	const IesProfile c = IesProfile::parse(circle, "c.ies");
	EXPECT_EQ(b.maxCandela(), 200);

	const struct
	{
		const char* what;
		const IesProfile& profile;
		float theta, phi, candela;
	} cases[] = {
		{"tabulated, times the multiplier", b, 0, 0, 200},
		{"between two vertical angles", b, 22.5f, 0, 180},
		{"between two horizontal angles", b, 45, 45, 120},
		{"between both", b, 22.5f, 45, 140},
		{"the mirror half", b, 45, 270, 80},
		{"the mirror half between angles", b, 45, 315, 120},
		{"below the table's last vertical angle", b, 90, 135, 0},
		{"beyond the table's vertical angles", b, 100, 0, 0},
		{"negative horizontal angle", b, 45, -45, 120},
		{"quadrant, tabulated", q, 0, 90, 30},
		{"quadrant, second quadrant", q, 0, 135, 20},
		{"quadrant, third quadrant", q, 0, 225, 20},
		{"quadrant, fourth quadrant", q, 0, 300, 23.333334f},
		{"quadrant, opposite the first angle", q, 0, 180, 10},
		{"circle, between tabulated angles", c, 0, 60, 45},
		{"circle, from the last angle round to the first", c, 0, 300, 60},
		{"one vertical angle holds all round", c, 170, 120, 60},
	};
	for(const auto& e : cases)
	{
		SCOPED_TRACE(e.what);
		EXPECT_NEAR(e.profile.candela(e.theta, e.phi), e.candela, 1e-3);
	}
}

TEST(IesProfile, EmitterTurnsDirectionsIntoTheProfilesAngles)
{
	const IesProfile b = IesProfile::parse(bilateral, "b.ies");
	// A lamp turned a quarter round z: its horizontal angle 0 is world +y,
	// 90 is world -x.
	IesEmitter lamp;
	lamp.profile = &b;
	lamp.down = V3(0, 0, -1);
	lamp.zero = V3(0, 1, 0);
	lamp.quarter = V3(-1, 0, 0);
	const float h = std::sqrt(0.5f);
	const struct
	{
		const char* what;
		V3 dir;
		float shape;
	} cases[] = {
		{"straight down", V3(0, 0, -1), 1},
		{"45 degrees towards angle 0", V3(0, h, -h), 160 / 200.0f},
		{"45 degrees towards angle 90", V3(-h, 0, -h), 80 / 200.0f},
		{"45 degrees towards angle 180", V3(0, -h, -h), 20 / 200.0f},
		{"level", V3(1, 0, 0), 0},
		{"up", V3(0, 0, 1), 0},
	};
	for(const auto& e : cases)
	{
		SCOPED_TRACE(e.what);
		EXPECT_NEAR(lamp.shape(e.dir), e.shape, 1e-4);
	}
	// The radiance carries the surface's cosine back out: a quarter of it
	// seen at a cosine of 0.5 is twice as bright; edge on, it is held.
	EXPECT_NEAR(lamp.radianceScale(V3(0, h, -h), -0.5f), 1.6f, 1e-4);
	EXPECT_NEAR(lamp.radianceScale(V3(0, 0, -1), 0), 1000, 1e-2);
}

TEST(IesProfile, FilesThatAreNoProfilesNameTheirLine)
{
	const std::string head = "IESNA:LM-63-2002\n[TEST] bad\nTILT=NONE\n";
	const struct
	{
		const char* what;
		std::string text;
		std::string message;
	} cases[] = {
		{"no TILT line", "IESNA:LM-63-2002\n1 1000 1 2 1 1 2 0 0 0\n",
			"IES profile 'bad.ies': no TILT line; this is not an LM-63 file."},
		{"cut short in the candela values", head + "1 1000 1 2 2 1 2 0 0 0\n1 1 0\n0 90\n0 90\n10 0\n30\n",
			"IES profile 'bad.ies', line 9: the file ends where a candela value (3 of 4 read) should follow."},
		{"cut short right after TILT", head, "IES profile 'bad.ies', line 3: the file ends where the number of lamps should follow."},
		{"cut short in the tilt table", "TILT=INCLUDE\n1\n2\n0 90\n1\n",
			"IES profile 'bad.ies', line 5: the file ends where a tilt factor should follow."},
		{"no vertical angles", head + "1 1000 1 0 1 1 2 0 0 0\n",
			"IES profile 'bad.ies', line 4: the number of vertical angles is 0; it must be a whole number from 1 to 100000."},
		{"a count that is no whole number", head + "1 1000 1 2\n2.5 1 2 0 0 0\n",
			"IES profile 'bad.ies', line 5: the number of horizontal angles is 2.5; it must be a whole number from 1 to 100000."},
		{"a count too large", head + "1 1000 1 1e9 1 1 2 0 0 0\n",
			"IES profile 'bad.ies', line 4: the number of vertical angles is 1e+09; it must be a whole number from 1 to 100000."},
		{"a word for a number", head + "1 1000 1 2 x2 1 2 0 0 0\n",
			"IES profile 'bad.ies', line 4: 'x2' is not a number (the number of horizontal angles expected)."},
		{"photometric type B", head + "1 1000 1 2 1 2 2 0 0 0\n",
			"IES profile 'bad.ies', line 4: photometric type 2 is not supported; only type C (1) profiles are read."},
		{"negative multiplier", head + "1 1000 -1 2 1 1 2 0 0 0\n",
			"IES profile 'bad.ies', line 4: the candela multiplier -1 is negative."},
		{"falling vertical angles", head + "1 1000 1 2 1 1 2 0 0 0\n1 1 0\n45\n30\n0\n1 2\n",
			"IES profile 'bad.ies', line 7: vertical angles must rise: 30 follows 45."},
		{"a horizontal angle past the circle", head + "1 1000 1 2 1 1 2 0 0 0\n1 1 0\n0 90\n400\n1 2\n",
			"IES profile 'bad.ies', line 7: horizontal angle 400 is outside 0 to 360 degrees."},
		{"a negative candela value", head + "1 1000 1 2 1 1 2 0 0 0\n1 1 0\n0 90\n0\n5\n-5\n",
			"IES profile 'bad.ies', line 9: candela value -5 is negative."},
	};
	for(const auto& e : cases)
	{
		SCOPED_TRACE(e.what);
		EXPECT_EQ(VelornTest::failureOf<Exception>([&] { IesProfile::parse(e.text, "bad.ies"); }), e.message);
	}
}

} // namespace
} // namespace Standin
} // namespace Velorn
