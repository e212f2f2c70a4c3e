#include "shaders/shader_test_helpers.h"
#include "shaders/shader_translation.h"

#include <cstring>
#include <memory>
#include <string>
#include <tuple>

namespace
{

const std::string kBlack = "vec3(0.00000, 0.00000, 0.00000)";
// A mix from the default colours, white to black.
const std::string kLerp = "lerp(vec3(1.00000, 1.00000, 1.00000), " + kBlack + ", ";
const std::string kUv = "mulCompVec2(getTexCoords(0) * 10.0, vec2(";
const int32_t kGrey = 1513;

} // namespace

using ShaderText = ShaderTest;

TEST_F(ShaderText, ExpressionsByKindOutputKindModeAndSpace)
{
	// Put together by hand from the expression rules.
	const std::tuple<int32_t, ShaderValues, int32_t, std::string> cases[] = {
		{ID_VSL_NOISE, {{VSLNOISE_OUTPUT, kGrey}}, 0,
			"(noise(mulCompVec2(getTexCoords(0) * 10.0, vec2(1.00000, 1.00000))) * 1.00000)"},
		{ID_VSL_NOISE, {{VSLNOISE_OUTPUT, kGrey}}, 7, "(noise(" + kUv + "1.00000, 1.00000))) * 1.00000)"},
		{ID_VSL_NOISE, {}, 0, "(Vec3ToReal(" + kLerp + "noise01(" + kUv + "1.00000, 1.00000))))) * 1.00000)"},
		{ID_VSL_NOISE,
			{{VSLNOISE_KIND, VSLNOISE_KIND_FRACTAL}, {VSLNOISE_SPACE, VSLNOISE_SPACE_3D},
				{VSLNOISE_SCALE, Vector(1, 2, 3)}, {VSLNOISE_GAIN, 0.5}, {VSLNOISE_COLOUR_A, Vector(0.25, 0.5, 0.75)},
				{VSLNOISE_COLOUR_B, Vector(1, 0, 0)}}, 1,
			"(lerp(vec3(0.25000, 0.50000, 0.75000), vec3(1.00000, 0.00000, 0.00000), "
			"fbm01(mulCompVec3(pos, vec3(1.00000, 3.00000, 2.00000)),8)) * 0.50000)"},
		{ID_VSL_NOISE,
			{{VSLNOISE_KIND, VSLNOISE_KIND_FRACTAL}, {VSLNOISE_OUTPUT, kGrey}, {VSLNOISE_SCALE, Vector(2, 3, 4)}}, 0,
			"(fbm(" + kUv + "2.00000, 3.00000)),8) * 1.00000)"},
		{ID_VSL_NOISE, {{VSLNOISE_SPACE, VSLNOISE_SPACE_3D}, {VSLNOISE_OUTPUT, kGrey}, {VSLNOISE_GAIN, -1.5}}, 1,
			"(vec3(noise(mulCompVec3(pos, vec3(1.00000, 1.00000, 1.00000)))) * -1.50000)"},

		{ID_VSL_BLEND, {{VSLBLEND_GAIN, 2.0}}, 1, "mulCompVec3(vec3(1.0), vec3(1.0)) * 2.00000"},
		{ID_VSL_BLEND, {}, 0, "(1.0 * 1.0) * 1.00000"},
		{ID_VSL_BLEND, {{VSLBLEND_OPERATION, VSLBLEND_ADD}}, 0, "(1.0 + 1.0) * 1.00000"},
		{ID_VSL_BLEND, {{VSLBLEND_OPERATION, VSLBLEND_ADD}}, 1, "vec3(1.0) + vec3(1.0) * 1.00000"},
		{ID_VSL_BLEND, {{VSLBLEND_OPERATION, VSLBLEND_SUBTRACT}, {VSLBLEND_GAIN, 0.125}}, 0, "(1.0 - 1.0) * 0.12500"},
		{ID_VSL_BLEND, {{VSLBLEND_OPERATION, VSLBLEND_SUBTRACT}}, 1, "vec3(1.0) - vec3(1.0) * 1.00000"},
		{ID_VSL_BLEND, {{VSLBLEND_OPERATION, 1700}}, 1, "vec3(1.0) * 1.00000"},

		{ID_VSL_GRADIENT, {}, 0, "Vec3ToReal(" + kLerp + "doti(getTexCoords(0)))) * 1.00000"},
		{ID_VSL_GRADIENT,
			{{VSLGRADIENT_DIRECTION, VSLGRADIENT_V}, {VSLGRADIENT_GAIN, 3.0},
				{VSLGRADIENT_COLOUR_A, Vector(0.5, 0.25, 0)}}, 1,
			"lerp(vec3(0.50000, 0.25000, 0.00000), " + kBlack + ", dotj(getTexCoords(0))) * 3.00000"},
		{ID_VSL_GRADIENT, {{VSLGRADIENT_DIRECTION, VSLGRADIENT_RADIAL}}, 0,
			"Vec3ToReal(" + kLerp + "length(vec2(0.5,0.5) - getTexCoords(0)) * 2.0 )) * 1.00000"},

		{ID_VSL_NORMAL, {}, 0, "Vec3ToReal(" + kLerp + "minCosTheta()))"},
		{ID_VSL_NORMAL, {{VSLNORMAL_COLOUR_A, Vector(0.5, 0.5, 0.5)}}, 1,
			"lerp(vec3(0.50000, 0.50000, 0.50000), " + kBlack + ", minCosTheta())"},
	};
	for(const auto& [type, values, outputKind, text] : cases)
		EXPECT_EQ(data(shader(type, values))->getShaderText(outputKind), text);
}

TEST_F(ShaderText, UnreadableShaderGivesItsConstant)
{
	// Data never given a node cannot read parameters; (real, vector).
	const std::tuple<NodeData* (*)(), const char*, const char*> cases[] = {
		{VslNoiseShader::Alloc, "1.0", "Vector(1.0)"}, {VslGradientShader::Alloc, "1.0", "Vector(1.0)"},
		{VslBlendShader::Alloc, "1.0", "vec3(1.0)"}, {VslNormalShader::Alloc, "(1.0)", "Vector(1.0)"}};
	for(const auto& [alloc, real, vector] : cases)
	{
		std::unique_ptr<VslShaderData> vsl(static_cast<VslShaderData*>(alloc()));
		SCOPED_TRACE(vector);
		EXPECT_EQ(vsl->getShaderText(0), real);
		EXPECT_EQ(vsl->getShaderText(1), vector);
		EXPECT_EQ(vsl->getShaderText(2), real);
	}
}

TEST_F(ShaderText, BlendInputs)
{
	// Nested: each level keeps its own bracket rules.
	BaseShader* outer = shader(ID_VSL_BLEND);
	BaseShader* inner = shader(ID_VSL_BLEND, {{VSLBLEND_OPERATION, VSLBLEND_ADD}, {VSLBLEND_GAIN, 2.0}}, outer);
	BaseContainer& links = *outer->GetDataInstance();
	links.SetLink(VSLBLEND_INPUT_1, inner);
	links.SetLink(VSLBLEND_INPUT_2, shader(ID_VSL_NORMAL, {}, outer));
	const std::string normal = kLerp + "minCosTheta())";
	EXPECT_EQ(data(outer)->getShaderText(1), "mulCompVec3(vec3(1.0) + vec3(1.0) * 2.00000, " + normal + ") * 1.00000");
	links.SetInt32(VSLBLEND_OPERATION, VSLBLEND_SUBTRACT);
	EXPECT_EQ(data(outer)->getShaderText(0), "((1.0 + 1.0) * 2.00000 - Vec3ToReal(" + normal + ")) * 1.00000");
	EXPECT_EQ(data(outer)->getShaderText(1), "vec3(1.0) + vec3(1.0) * 2.00000 - " + normal + " * 1.00000");
	// A third level.
	inner->GetDataInstance()->SetLink(VSLBLEND_INPUT_2, shader(ID_VSL_GRADIENT, {{VSLGRADIENT_GAIN, 0.5}}, inner));
	EXPECT_EQ(data(outer)->getShaderText(0),
		"((1.0 + Vec3ToReal(" + kLerp + "doti(getTexCoords(0)))) * 0.50000) * 2.00000 - "
		"Vec3ToReal(" + normal + ")) * 1.00000");

	// A host shader, a free-text shader (a whole program) and a link back
	// to the blend itself all count as empty.
	links.SetLink(VSLBLEND_INPUT_1, shader(Xcolor, {}, outer));
	links.SetLink(VSLBLEND_INPUT_2, shader(ID_VSL_SHADER, {}, outer));
	EXPECT_EQ(data(outer)->getShaderText(1), "vec3(1.0) - vec3(1.0) * 1.00000");
	links.SetLink(VSLBLEND_INPUT_1, outer);
	EXPECT_EQ(data(outer)->getShaderText(0), "(1.0 - 1.0) * 1.00000");
}

TEST_F(ShaderText, TranslatedPrograms)
{
	// An expression shader: the 251-character prologue, the header, the
	// expression.
	const char* prologue =
		"def Vec3ToReal(vec3 v) real : ((doti(v) + dotj(v) + dotk(v)) / 3.0)\n"
		"def mulCompVec2(vec2 a, vec2 b) vec2 : vec2(doti(a) * doti(b), dotj(a) * dotj(b))\n"
		"def mulCompVec3(vec3 a, vec3 b) vec3 : vec3(doti(a) * doti(b), dotj(a) * dotj(b), dotk(a) * dotk(b))\n";
	ASSERT_EQ(std::strlen(prologue), 251u);
	const String header("def eval(vec3 pos) vec3: ");
	Velorn::Vector<Velorn::Texture> textures;
	EXPECT_TRUE(translateShader(nullptr, textures, header, 1).isNull());
	EXPECT_EQ(translateShader(shader(ID_VSL_BLEND, {{VSLBLEND_GAIN, 2.0}}), textures, header, 1)->shader.str(),
		std::string(prologue) + "def eval(vec3 pos) vec3: mulCompVec3(vec3(1.0), vec3(1.0)) * 2.00000");

	// Free text: the user's program alone, its marks replaced.
	BaseShader* unset = shader(ID_VSL_SHADER);
	unset->GetDataInstance()->RemoveData(VSLSHADER_TEXT);
	EXPECT_EQ(translateShader(unset, textures, header, 1)->shader.str(), "no shader");
	EXPECT_EQ(textures.size(), 0u);

	// Only the second file set: its mark becomes list index 0, the others stay.
	BaseShader* second = shader(ID_VSL_SHADER, {{VSLSHADER_TEXT, String("a=$tex01$ b=$tex02$ c=$tex03$")},
		{VSLSHADER_TEXTURE_2, Filename(String("/maps/wood.png"))}});
	EXPECT_EQ(translateShader(second, textures, header, 1)->shader.str(), "a=$tex01$ b=0 c=$tex03$");
	ASSERT_EQ(textures.size(), 1u);
	const Velorn::Texture& wood = textures[0];
	EXPECT_EQ(wood.path.str(), "/maps/wood.png");
	EXPECT_TRUE(wood.exponent == 2.2 && wood.a == 0 && wood.b == 1 && wood.c == 0 && !wood.smooth);
	EXPECT_TRUE(!wood.tex_coord_generation.isNull() && wood.tex_coord_generation->getType() == 0u); // UV

	// All three on a list that holds one already: indices 1, 2, 3 in file
	// order, a mark that occurs twice replaced twice; the textures go to
	// the material's list, not the shader's own.
	BaseShader* all = shader(ID_VSL_SHADER, {{VSLSHADER_TEXT, String("$tex01$+$tex01$,$tex03$,$tex02$ $tex03$")},
		{VSLSHADER_TEXTURE_1, Filename(String("/maps/a.png"))}, {VSLSHADER_TEXTURE_2, Filename(String("/maps/b.png"))},
		{VSLSHADER_TEXTURE_3, Filename(String("/maps/c.png"))}});
	Velorn::Reference<Velorn::ShaderInfo> info = translateShader(all, textures, header, 0);
	EXPECT_EQ(info->shader.str(), "1+1,3,2 3");
	EXPECT_EQ(info->textures.size(), 0u);
	ASSERT_EQ(textures.size(), 4u);
	EXPECT_EQ(textures[3].path.str(), "/maps/c.png");
}
