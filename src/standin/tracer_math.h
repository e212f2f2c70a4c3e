#pragma once

#include <cmath>
#include <cstdint>

namespace Velorn
{
namespace Standin
{

const float pi = 3.14159265358979f;

// A three-component float vector: positions, directions and RGB values.
struct V3
{
	float x = 0, y = 0, z = 0;

	V3() = default;
	V3(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}
	explicit V3(float s) : x(s), y(s), z(s) {}

	V3 operator+(const V3& o) const { return V3(x + o.x, y + o.y, z + o.z); }
	V3 operator-(const V3& o) const { return V3(x - o.x, y - o.y, z - o.z); }
	V3 operator*(const V3& o) const { return V3(x * o.x, y * o.y, z * o.z); }
	V3 operator/(const V3& o) const { return V3(x / o.x, y / o.y, z / o.z); }
	V3 operator*(float s) const { return V3(x * s, y * s, z * s); }
	V3 operator/(float s) const { return V3(x / s, y / s, z / s); }
	V3 operator-() const { return V3(-x, -y, -z); }
	V3& operator+=(const V3& o)
	{
		x += o.x;
		y += o.y;
		z += o.z;
		return *this;
	}
	V3& operator*=(const V3& o)
	{
		x *= o.x;
		y *= o.y;
		z *= o.z;
		return *this;
	}
	V3& operator*=(float s)
	{
		x *= s;
		y *= s;
		z *= s;
		return *this;
	}
	float operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }

	float maxComponent() const { return std::fmax(x, std::fmax(y, z)); }
	float average() const { return (x + y + z) / 3.0f; }
	bool isBlack() const { return x <= 0 && y <= 0 && z <= 0; }
};

inline V3 operator*(float s, const V3& v) { return v * s; }
inline float dot(const V3& a, const V3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline V3 cross(const V3& a, const V3& b)
{
	return V3(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}
inline float length(const V3& v) { return std::sqrt(dot(v, v)); }
inline V3 normalise(const V3& v)
{
	const float len = length(v);
	return len > 0 ? v / len : v;
}
// Rec. 709 luminance of a linear RGB value.
inline float luminance(const V3& c) { return 0.2126f * c.x + 0.7152f * c.y + 0.0722f * c.z; }
inline V3 exp(const V3& v) { return V3(std::exp(v.x), std::exp(v.y), std::exp(v.z)); }

// An orthonormal frame about a unit normal, for sampling in local space
// where the normal is z.
struct Frame
{
	V3 s, t, n;

	explicit Frame(const V3& normal) : n(normal)
	{
		// Duff et al.'s branchless basis.
		const float sign = std::copysign(1.0f, n.z);
		const float a = -1.0f / (sign + n.z);
		const float b = n.x * n.y * a;
		s = V3(1.0f + sign * n.x * n.x * a, sign * b, -sign * n.x);
		t = V3(b, sign + n.y * n.y * a, -n.y);
	}
	V3 toWorld(const V3& v) const { return s * v.x + t * v.y + n * v.z; }
	V3 toLocal(const V3& v) const { return V3(dot(v, s), dot(v, t), dot(v, n)); }
};

// A small PCG generator: one per pixel sample, seeded from the pixel, the
// pass and the run's seed, so that a picture does not depend on how rows
// were shared out among threads.
class Rng
{
public:
	Rng(uint64_t seed, uint64_t stream)
	{
		inc = (stream << 1u) | 1u;
		next();
		state += seed;
		next();
	}
	uint32_t next()
	{
		const uint64_t old = state;
		state = old * 6364136223846793005ULL + inc;
		const uint32_t xorshifted = (uint32_t)(((old >> 18u) ^ old) >> 27u);
		const uint32_t rot = (uint32_t)(old >> 59u);
		return (xorshifted >> rot) | (xorshifted << ((-rot) & 31));
	}
	// Uniform in [0, 1).
	float uniform() { return (float)(next() >> 8) * (1.0f / 16777216.0f); }

private:
	uint64_t state = 0;
	uint64_t inc = 0;
};

// Cosine-weighted direction about z.
inline V3 sampleCosineHemisphere(float u1, float u2)
{
	const float r = std::sqrt(u1);
	const float phi = 2 * pi * u2;
	return V3(r * std::cos(phi), r * std::sin(phi), std::sqrt(std::fmax(0.0f, 1 - u1)));
}

// A uniform direction in the cone of half angle acos(cos_max) about z.
inline V3 sampleCone(float u1, float u2, float cos_max)
{
	const float cos_t = 1 - u1 * (1 - cos_max);
	const float sin_t = std::sqrt(std::fmax(0.0f, 1 - cos_t * cos_t));
	const float phi = 2 * pi * u2;
	return V3(sin_t * std::cos(phi), sin_t * std::sin(phi), cos_t);
}

inline V3 reflect(const V3& d, const V3& n) { return d - n * (2 * dot(d, n)); }

// Fresnel reflectance of an unpolarised ray between dielectrics; eta is the
// ratio of the index on the far side to the index on the near side and
// cos_i the cosine on the near side (positive).
inline float fresnelDielectric(float cos_i, float eta)
{
	const float sin_t2 = (1 - cos_i * cos_i) / (eta * eta);
	if(sin_t2 >= 1)
		return 1;
	const float cos_t = std::sqrt(1 - sin_t2);
	const float rs = (cos_i - eta * cos_t) / (cos_i + eta * cos_t);
	const float rp = (eta * cos_i - cos_t) / (eta * cos_i + cos_t);
	return 0.5f * (rs * rs + rp * rp);
}

// The refracted direction of unit d through a surface of unit normal n
// (facing d's side), eta as above; false on total internal reflection.
inline bool refract(const V3& d, const V3& n, float eta, V3& out)
{
	const float cos_i = -dot(d, n);
	const float sin_t2 = (1 - cos_i * cos_i) / (eta * eta);
	if(sin_t2 >= 1)
		return false;
	const float cos_t = std::sqrt(1 - sin_t2);
	out = normalise(d / eta + n * (cos_i / eta - cos_t));
	return true;
}

} // namespace Standin
} // namespace Velorn
