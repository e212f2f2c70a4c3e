#include "standin/ies_profile.h"

#include "support/exceptions.h"
#include "support/file_utils.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace Velorn
{
namespace Standin
{

namespace
{

// More angles than any goniophotometer measures: a count above this is a
// broken file, not a fine table.
const long max_angle_count = 100000;

// The numbers after the TILT line, one at a time with the line they stand on.
class NumberReader
{
public:
	// start is the first character after the TILT line, which is tilt_line.
	NumberReader(const std::string& text_, size_t start, int tilt_line, const std::string& name_)
		: text(text_), pos(start), line(tilt_line + 1), last_line(tilt_line), name(name_)
	{}

	[[noreturn]] void fail(const std::string& what, int at_line) const
	{
		throw Exception("IES profile '" + name + "', line " + std::to_string(at_line) + ": " + what);
	}

	// The next number; what names it in the message when the file ends first.
	double next(const std::string& what)
	{
		skipSpace();
		if(pos >= text.size())
			fail("the file ends where " + what + " should follow.", last_line);
		const size_t start = pos;
		while(pos < text.size() && !isSpace(text[pos]))
			++pos;
		const std::string token = text.substr(start, pos - start);
		char* end = nullptr;
		errno = 0;
		const double value = std::strtod(token.c_str(), &end);
		if(*end != '\0' || errno == ERANGE || !std::isfinite(value))
			fail("'" + token + "' is not a number (" + what + " expected).", line);
		last_line = line;
		return value;
	}

	// A count between 1 and the largest this renderer takes.
	size_t count(const std::string& what)
	{
		const double value = next(what);
		if(value != std::floor(value) || value < 1 || value > (double)max_angle_count)
			fail(what + " is " + shortText(value) + "; it must be a whole number from 1 to " +
					 std::to_string(max_angle_count) + ".",
				last_line);
		return (size_t)value;
	}

	int lastLine() const { return last_line; }

	static std::string shortText(double v)
	{
		char buffer[32];
		std::snprintf(buffer, sizeof(buffer), "%g", v);
		return buffer;
	}

private:
	// LM-63 separates numbers by blanks, line ends or commas.
	static bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ','; }

	void skipSpace()
	{
		while(pos < text.size() && isSpace(text[pos]))
		{
			if(text[pos] == '\n')
				++line;
			++pos;
		}
	}

	const std::string& text;
	size_t pos;
	int line;
	int last_line;  // of the last number read
	const std::string& name;
};

// Angles that must rise from one to the next.
std::vector<float> readAngles(NumberReader& in, size_t count, const char* what, double lowest, double highest)
{
	std::vector<float> angles;
	for(size_t i = 0; i < count; ++i)
	{
		const double a = in.next(what);
		if(a < lowest || a > highest)
			in.fail(std::string(what) + " " + NumberReader::shortText(a) + " is outside " +
						NumberReader::shortText(lowest) + " to " + NumberReader::shortText(highest) + " degrees.",
				in.lastLine());
		if(!angles.empty() && a <= angles.back())
			in.fail(std::string(what) + "s must rise: " + NumberReader::shortText(a) + " follows " +
						NumberReader::shortText(angles.back()) + ".",
				in.lastLine());
		angles.push_back((float)a);
	}
	return angles;
}

// The index i with table[i] <= x <= table[i + 1] and the share of the way
// from one to the other; table has at least two entries and holds x.
void bracket(const std::vector<float>& table, float x, size_t& i, float& t)
{
	i = (size_t)(std::upper_bound(table.begin(), table.end(), x) - table.begin());
	i = std::min(std::max(i, (size_t)1), table.size() - 1) - 1;
	t = (x - table[i]) / (table[i + 1] - table[i]);
	t = std::fmin(std::fmax(t, 0.0f), 1.0f);
}

} // namespace

IesProfile IesProfile::load(const std::string& path)
{
	std::string text;
	try
	{
		FileUtils::readEntireFile(path, text);
	}
	catch(const FileUtilsExcep& e)
	{
		throw Exception("IES profile '" + path + "' cannot be read: " + e.what());
	}
	return parse(text, path);
}

IesProfile IesProfile::parse(const std::string& text, const std::string& name)
{
	// The keyword lines end at the TILT line; the numbers start after it.
	size_t pos = 0;
	int line = 1;
	std::string tilt;
	while(pos < text.size())
	{
		size_t end = text.find('\n', pos);
		if(end == std::string::npos)
			end = text.size();
		const std::string content = text.substr(pos, end - pos);
		pos = std::min(end + 1, text.size());
		if(content.compare(0, 5, "TILT=") == 0)
		{
			tilt = content.substr(5);
			while(!tilt.empty() && (tilt.back() == '\r' || tilt.back() == ' '))
				tilt.pop_back();
			break;
		}
		++line;
	}
	if(tilt.empty())
		throw Exception("IES profile '" + name + "': no TILT line; this is not an LM-63 file.");
	NumberReader in(text, pos, line, name);

	// A tilt table says how the lamp's output changes as the luminaire
	// tilts; a preview or a scene lamp is not tilted, so it is read past.
	// A tilt in another file needs nothing here.
	if(tilt == "INCLUDE")
	{
		in.next("the lamp-to-luminaire geometry");
		const size_t tilt_count = in.count("the number of tilt angles");
		for(size_t i = 0; i < 2 * tilt_count; ++i)
			in.next(i < tilt_count ? "a tilt angle" : "a tilt factor");
	}

	in.next("the number of lamps");
	in.next("the lumens per lamp");
	const double multiplier = in.next("the candela multiplier");
	if(multiplier < 0)
		in.fail("the candela multiplier " + NumberReader::shortText(multiplier) + " is negative.", in.lastLine());
	const size_t vertical_count = in.count("the number of vertical angles");
	const size_t horizontal_count = in.count("the number of horizontal angles");
	const double type = in.next("the photometric type");
	if(type != 1)
		in.fail("photometric type " + NumberReader::shortText(type) +
					" is not supported; only type C (1) profiles are read.",
			in.lastLine());
	in.next("the units type");
	in.next("the luminaire's width");
	in.next("the luminaire's length");
	in.next("the luminaire's height");
	in.next("the ballast factor");
	in.next("the ballast-lamp photometric factor");
	in.next("the input watts");

	IesProfile profile;
	profile.vertical = readAngles(in, vertical_count, "vertical angle", 0, 180);
	profile.horizontal = readAngles(in, horizontal_count, "horizontal angle", 0, 360);
	profile.values.reserve(vertical_count * horizontal_count);
	for(size_t i = 0; i < vertical_count * horizontal_count; ++i)
	{
		const double c = in.next("a candela value (" + std::to_string(i) + " of " +
								 std::to_string(vertical_count * horizontal_count) + " read)");
		if(c < 0)
			in.fail("candela value " + NumberReader::shortText(c) + " is negative.", in.lastLine());
		profile.values.push_back((float)(c * multiplier));
		profile.max_candela = std::max(profile.max_candela, profile.values.back());
	}
	return profile;
}

float IesProfile::alongVertical(size_t row, float theta) const
{
	const float* v = &values[row * vertical.size()];
	// One vertical angle is one value for every direction.
	if(vertical.size() == 1)
		return v[0];
	if(theta < vertical.front() || theta > vertical.back())
		return 0;
	size_t i;
	float t;
	bracket(vertical, theta, i, t);
	return v[i] + (v[i + 1] - v[i]) * t;
}

float IesProfile::candela(float theta, float phi) const
{
	if(horizontal.size() == 1)
		return alongVertical(0, theta);
	phi = std::fmod(phi, 360.0f);
	if(phi < 0)
		phi += 360;
	// The table's last angle tells how much of the circle it covers; the
	// rest is its mirror image.
	const float last = horizontal.back();
	if(last == 90)
	{
		if(phi > 180)
			phi = 360 - phi;
		if(phi > 90)
			phi = 180 - phi;
	}
	else if(last == 180)
	{
		if(phi > 180)
			phi = 360 - phi;
	}
	size_t i;
	float t;
	if(phi < horizontal.front() || phi > last)
	{
		// A full circle whose table does not reach round: between the last
		// angle and the first one again.
		const float span = horizontal.front() + 360 - last;
		t = (phi < horizontal.front() ? phi + 360 - last : phi - last) / span;
		const float a = alongVertical(horizontal.size() - 1, theta), b = alongVertical(0, theta);
		return a + (b - a) * t;
	}
	bracket(horizontal, phi, i, t);
	const float a = alongVertical(i, theta), b = alongVertical(i + 1, theta);
	return a + (b - a) * t;
}

float IesEmitter::shape(const V3& dir) const
{
	if(!profile || profile->maxCandela() <= 0)
		return 0;
	const float to_degrees = 180 / pi;
	const float theta = std::acos(std::fmin(std::fmax(dot(dir, down), -1.0f), 1.0f)) * to_degrees;
	const float phi = std::atan2(dot(dir, quarter), dot(dir, zero)) * to_degrees;
	return profile->candela(theta, phi) / profile->maxCandela();
}

float IesEmitter::radianceScale(const V3& dir, float cos_surface) const
{
	const float min_cos = 0.001f;
	return shape(dir) / std::fmax(std::fabs(cos_surface), min_cos);
}

} // namespace Standin
} // namespace Velorn
