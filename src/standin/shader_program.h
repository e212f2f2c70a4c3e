#pragma once

#include "standin/tracer_math.h"

#include <memory>
#include <string>
#include <vector>

namespace Velorn
{
namespace Standin
{

// Where a material channel is read: the hit's world position, its texture
// coordinates and the cosine between the ray and the shading normal.
struct ShadePoint
{
	V3 position;
	float u = 0, v = 0;
	float cos_theta = 1;
};

// A value of the shader language: a real (dim 1), a vec2 or a vec3.
struct ShaderValue
{
	int dim = 1;
	float c[3] = {0, 0, 0};
};

// A program in the renderer's shader language, compiled once to a tree and
// evaluated at shading points by any number of threads. It reads the part
// of the language that material channels are written in: functions defined
// with "def name(type arg, ...) type : expression", the types real, int,
// vec2 and vec3, numbers, + - * / and unary minus with the usual
// precedence, calls of defined functions, and the built-ins doti, dotj,
// dotk, vec2, vec3, lerp, length, getTexCoords, minCosTheta, noise,
// noise01, fbm and fbm01. The function "eval" is the entry; it takes no
// argument or the position (vec3 pos) and returns a real or a vec3.
class ShaderProgram
{
public:
	// Throws Exception for text outside that part of the language, with the
	// line and column of the fault.
	explicit ShaderProgram(const std::string& text);
	~ShaderProgram();

	ShaderValue eval(const ShadePoint& point) const;
	// A vec3 result as it is, a real one in all three components.
	V3 evalColour(const ShadePoint& point) const;
	// A real result as it is, a vec3 one as the mean of its components.
	float evalReal(const ShadePoint& point) const;

	struct Node;
	struct Function;

private:
	std::vector<std::unique_ptr<Function>> functions;
	const Function* entry = nullptr;
};

// Gradient noise on the integer lattice, about -1 to 1, 0 at lattice points.
float gradientNoise(const V3& p);
// A sum of octaves of gradient noise, each of half the amplitude and 1.99
// times the frequency of the one before.
float fractalNoise(const V3& p, int octaves);

} // namespace Standin
} // namespace Velorn
