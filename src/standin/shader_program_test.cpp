#include "scene/channel_params.h"
#include "scene/shader_info.h"
#include "standin/shader_program.h"
#include "standin/standin_test_helpers.h"
#include "standin/tracer_scene.h"
#include "support/exceptions.h"
#include "support/failures.h"

#include <gtest/gtest.h>

namespace Velorn
{
namespace Standin
{
namespace
{

// The three helper functions that the plug-in writes ahead of every
// expression shader.
const std::string prologue =
	"def Vec3ToReal(vec3 v) real : ((doti(v) + dotj(v) + dotk(v)) / 3.0)\n"
	"def mulCompVec2(vec2 a, vec2 b) vec2 : vec2(doti(a) * doti(b), dotj(a) * dotj(b))\n"
	"def mulCompVec3(vec3 a, vec3 b) vec3 : vec3(doti(a) * doti(b), dotj(a) * dotj(b), dotk(a) * dotk(b))\n";
const std::string colour_head = "def eval(vec3 pos) vec3: ";
const std::string real_head = "def eval(vec3 pos) real: ";

ShadePoint at(float u, float v, const V3& position = V3(0), float cos_theta = 1)
{
	ShadePoint p;
	p.u = u;
	p.v = v;
	p.position = position;
	p.cos_theta = cos_theta;
	return p;
}

TEST(ShaderProgram, EvaluatesThePlugInsExpressions)
{
	// Expected values worked out by hand. Gradient noise is 0 on the
	// lattice, so noise01 there is 0.5 and a noise mix gives the middle of
	// its two colours; every octave of a fractal at the origin is 0 too.
	const std::string a = "vec3(1.00000, 0.50000, 0.00000)", b = "vec3(0.00000, 0.50000, 1.00000)";
	const struct
	{
		const char* name;
		std::string text;
		ShadePoint point;
		V3 expected;
	} cases[] = {
		{"gradient along u, colour", colour_head + "lerp(" + a + ", " + b + ", doti(getTexCoords(0))) * 2.00000",
			at(0.25f, 0.9f), V3(1.5f, 1.0f, 0.5f)},
		{"gradient along v, real", real_head + "Vec3ToReal(lerp(" + a + ", " + b + ", dotj(getTexCoords(0))) * 1.00000)",
			at(0.9f, 0.5f), V3(0.5f)},
		{"radial gradient, half way out", colour_head + "lerp(" + a + ", " + b +
			 ", length(vec2(0.5,0.5) - getTexCoords(0)) * 2.0 ) * 1.00000",
			at(0.8f, 0.9f), V3(0.0f, 0.5f, 1.0f)},
		{"UV noise mix on the lattice",
			colour_head + "(lerp(" + a + ", " + b +
				", noise01(mulCompVec2(getTexCoords(0) * 10.0, vec2(1.00000, 1.00000)))) * 3.00000)",
			at(0.3f, 0.7f), V3(1.5f)},
		{"plain UV noise for a real channel on the lattice",
			real_head + "(noise(mulCompVec2(getTexCoords(0) * 10.0, vec2(2.00000, 1.00000))) * 1.00000)", at(0.5f, 0.2f),
			V3(0)},
		{"3-D fractal mix at the origin",
			colour_head + "(lerp(" + a + ", " + b + ", fbm01(mulCompVec3(pos, vec3(8.00000, 8.00000, 8.00000)),8)) * 1.00000)",
			at(0.3f, 0.3f, V3(0)), V3(0.5f)},
		{"normal shader", real_head + "Vec3ToReal(lerp(" + a + ", " + b + ", minCosTheta()))", at(0, 0, V3(0), 0.25f),
			V3(0.5f)},
		// The gain of an add binds to the second operand only: 1 + 1 * 2.
		{"blend add", colour_head + "vec3(1.0) + vec3(1.0) * 2.00000", at(0, 0), V3(3)},
		{"blend multiply of reals", real_head + "(1.0 - 0.25) * 2.00000", at(0, 0), V3(1.5f)},
		{"blend multiply", colour_head + "mulCompVec3(vec3(0.5, 2.0, 3.0), vec3(4.0, 0.5, -1.0)) * 2.00000", at(0, 0),
			V3(4, 2, -6)},
		{"position and negation", colour_head + "-pos / 2.0", at(0, 0, V3(1, -2, 4)), V3(-0.5f, 1, -2)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		const ShaderProgram program(prologue + c.text);
		StandinTest::expectNear(program.evalColour(c.point), c.expected, 1e-5f);
		EXPECT_NEAR(program.evalReal(c.point), c.expected.average(), 1e-5f);
	}
}

TEST(ShaderProgram, NoiseIsSmoothBoundedAndVaried)
{
	// Zero on the lattice, within [-1, 1], continuous, not the same
	// everywhere; a fractal of one octave is the noise itself and each
	// further octave adds half the amplitude at 1.99 times the frequency.
	float lowest = 1, highest = -1;
	for(int i = 0; i < 4000; ++i)
	{
		const V3 p(i * 0.137f - 50, i * 0.071f + 3, -i * 0.029f);
		const float n = gradientNoise(p);
		lowest = std::fmin(lowest, n);
		highest = std::fmax(highest, n);
		EXPECT_NEAR(gradientNoise(p + V3(1e-3f, 0, 0)), n, 0.02f);
		EXPECT_FLOAT_EQ(fractalNoise(p, 1), n);
		EXPECT_NEAR(fractalNoise(p, 2), n + 0.5f * gradientNoise(p * 1.99f), 1e-5f);
	}
	EXPECT_GE(lowest, -1.0f);
	EXPECT_LE(highest, 1.0f);
	EXPECT_LT(lowest, -0.3f);
	EXPECT_GT(highest, 0.3f);
	for(const V3 lattice : {V3(0, 0, 0), V3(3, -7, 12), V3(-100, 5, 1)})
		EXPECT_EQ(gradientNoise(lattice), 0.0f);
}

TEST(ShaderProgram, RefusesWhatItCannotRead)
{
	const struct
	{
		std::string text;
		std::string message;
	} cases[] = {
		// What the plug-in writes for a noise shader it could not read.
		{"def eval(vec3 pos) vec3: Vector(1.0)", "Shader program, line 1, column 26: unknown function 'Vector'."},
		{"def eval(vec3 pos) vec3:\n\tfoo", "Shader program, line 2, column 2: unknown name 'foo'."},
		{"def eval(vec3 pos) vec3: 1.0", "Shader program, line 1, column 29: function 'eval' returns vec3 but its "
										 "expression is real."},
		{"def eval(vec3 pos) vec3: pos * pos", "Shader program, line 1, column 35: cannot multiply vec3 and vec3."},
		{"def eval(vec3 pos) real: lerp(1.0, pos, 0.5)",
			"Shader program, line 1, column 26: the arguments do not match 'lerp'."},
		{"def eval(vec3 pos) real: (1.0", "Shader program, line 1, column 30: expected ')'."},
		{"def eval(colour c) real: 1.0", "Shader program, line 1, column 10: unknown type 'colour'."},
		{"no shader", "Shader program, line 1, column 1: expected \"def\"."},
		{"def f() real: 1.0", "Shader program: no function \"eval\"."},
		{"def eval(real x) real: x", "Shader program: \"eval\" must take nothing or (vec3 pos) and return real or vec3."},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.text);
		EXPECT_EQ(VelornTest::failureOf<Exception>([&] { ShaderProgram program(c.text); }), c.message);
	}
}

TEST(ShaderProgram, MaterialChannelsUseTheirShaders)
{
	// A diffuse sphere under a uniform sky of 1 shows its albedo: the
	// shader's colour where it can be read, the fallback and a warning
	// where it cannot.
	using namespace StandinTest;
	const struct
	{
		const char* name;
		std::string text;
		V3 expected;
		std::string warning;
	} cases[] = {
		{"a colour", colour_head + "vec3(0.25, 0.5, 0.75)", V3(0.25f, 0.5f, 0.75f), ""},
		{"a real spread over the channels", "def eval() real: 0.4", V3(0.4f), ""},
		{"unreadable", colour_head + "Vector(1.0)", V3(0.5f),
			"Material 'sphere' uses shaders; they are read as constants (Shader program, line 1, column 26: unknown "
			"function 'Vector')."},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		Reference<SceneNodeRoot> root = makeRoot(4, 4, Vec3d(0, -5, 0), Vec3d(0, 1, 0));
		addUniformBackground(*root, 1.0, 0);
		Reference<ShaderInfo> info = new ShaderInfo();
		info->shader = String(c.text);
		Reference<DiffuseMaterial> material = diffuse(0.5);
		material->albedo = new ShaderWavelengthDependentParam(info);
		Reference<SceneNodeMaterial> node = addMaterial(*root, material);
		node->setName("sphere");
		addSphere(*root, Vec3d(0, 0, 0), 1, node);
		const TracerScene scene(*root, ".");
		expectNear(meanLayers(scene, Ray{V3(0, -5, 0), V3(0, 1, 0)}, 4000, 3)[0], c.expected, 0.02f);
		if(c.warning.empty())
			EXPECT_TRUE(scene.getWarnings().empty());
		else
			EXPECT_EQ(scene.getWarnings(), std::vector<std::string>{c.warning});
	}
}

} // namespace
} // namespace Standin
} // namespace Velorn
