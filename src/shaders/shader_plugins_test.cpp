#include "shaders/perlin_noise.h"
#include "shaders/shader_test_helpers.h"

#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/description.h"
#include "c4d/plugin_test_helpers.h"
#include "c4d/world_preferences.h"

#include <cmath>
#include <tuple>

namespace
{

ChannelData at(double u, double v, double w = 0)
{
	ChannelData cd;
	cd.p = Vector(u, v, w);
	return cd;
}

void expectNear(const Vector& actual, const Vector& expected, double tolerance = 1e-12)
{
	EXPECT_NEAR(actual.x, expected.x, tolerance);
	EXPECT_NEAR(actual.y, expected.y, tolerance);
	EXPECT_NEAR(actual.z, expected.z, tolerance);
}

} // namespace

using ShaderPlugins = ShaderTest;

TEST_F(ShaderPlugins, RegistrationsRenderInfoAndInitDefaults)
{
	const Vector white(1, 1, 1), black(0, 0, 0);
	const std::tuple<int32_t, const char*, const char*, int32_t, ShaderValues> plugins[] = {
		{ID_VSL_SHADER, "Velorn VSL Shader", "xevelornvslshader", 0, {{VSLSHADER_TEXT, String("default")}}},
		{ID_VSL_NOISE, "VSL Noise", "xvslnoise", 16,
			{{VSLNOISE_KIND, 1501}, {VSLNOISE_SPACE, 1504}, {VSLNOISE_OUTPUT, 1509}, {VSLNOISE_SCALE, white},
				{VSLNOISE_GAIN, 1.0}, {VSLNOISE_COLOUR_A, white}, {VSLNOISE_COLOUR_B, black}}},
		{ID_VSL_BLEND, "VSL Blend", "xvslblend", 16, {{VSLBLEND_OPERATION, 1605}, {VSLBLEND_GAIN, 1.0}}},
		{ID_VSL_GRADIENT, "VSL Gradient", "xvslgradient", 16,
			{{VSLGRADIENT_DIRECTION, 1601}, {VSLGRADIENT_GAIN, 1.0}, {VSLGRADIENT_COLOUR_A, white},
				{VSLGRADIENT_COLOUR_B, black}}},
		{ID_VSL_NORMAL, "VSL Normal", "xvslnormal", 16, {{VSLNORMAL_COLOUR_A, white}, {VSLNORMAL_COLOUR_B, black}}}};
	for(const auto& [type, name, resource, renderInfo, defaults] : plugins)
	{
		SCOPED_TRACE(resource);
		const PluginRecord* record = PluginRegistry::get().find(type);
		ASSERT_NE(record, nullptr);
		EXPECT_TRUE(record->name == String(name) && record->description == String(resource) && record->info == 0);
		BaseShader* sh = shader(type);
		for(const auto& [id, value] : defaults)
			EXPECT_TRUE(sh->GetDataInstance()->GetData(id) == value) << id;
		EXPECT_EQ(sh->GetRenderInfo(), renderInfo);
		Description description;
		EXPECT_TRUE(sh->GetDescription(&description)) << HostResources::get().error().GetStdString();
	}
}

TEST_F(ShaderPlugins, NoiseColoursAreEnabledOnlyForTheMix)
{
	BaseShader* noise = shader(ID_VSL_NOISE);
	EXPECT_TRUE(noise->IsParameterEnabled(DescID(VSLNOISE_COLOUR_A)));
	noise->GetDataInstance()->SetInt32(VSLNOISE_OUTPUT, 1513);
	EXPECT_FALSE(noise->IsParameterEnabled(DescID(VSLNOISE_COLOUR_A)));
	EXPECT_FALSE(noise->IsParameterEnabled(DescID(VSLNOISE_COLOUR_B)));
	EXPECT_TRUE(noise->IsParameterEnabled(DescID(VSLNOISE_SCALE)));
}

TEST_F(ShaderPlugins, NoiseOutputByKindSpaceAndMode)
{
	// A free shader has no document: the scale is that of the unit
	// preference, here centimetres, 0.01 m per unit.
	GetWorldContainerInstance()->SetInt32(WPREF_UNITS, DOCUMENT_UNIT_CM);
	VolumeData vd;
	vd.p = Vector(123, 57, 31);
	ChannelData surface = at(0.3, 0.4), corner = at(0.05, 0.95);
	surface.vd = &vd;
	const int32_t grey = 1513, fractal = 1502, space3d = 1505;
	// q, the sample point, by hand: UV (u 10 sx, (1 - v) 10 sy, w 10 sz);
	// 3-D with a point p times the document scale, times the scale.
	const std::tuple<const char*, ShaderValues, ChannelData, Vector> cases[] = {
		{"plain UV grey", {{VSLNOISE_OUTPUT, grey}, {VSLNOISE_GAIN, 2.0}}, corner, Vector(0.5, 0.5, 0)},
		{"plain UV mix, scaled", {{VSLNOISE_SCALE, Vector(2, 3, 4)}}, at(0.13, 0.21, 0.37), Vector(2.6, 23.7, 14.8)},
		{"mix of two colours", {{VSLNOISE_COLOUR_A, Vector(0.2, 0.4, 1)}, {VSLNOISE_COLOUR_B, Vector(1, 0, 0.5)},
			{VSLNOISE_GAIN, 3.0}}, corner, Vector(0.5, 0.5, 0)},
		{"fractal UV grey", {{VSLNOISE_KIND, fractal}, {VSLNOISE_OUTPUT, grey}}, at(0.31, 0.77, 0.1),
			Vector(3.1, 2.3, 1)},
		{"plain 3-D mix", {{VSLNOISE_SPACE, space3d}, {VSLNOISE_SCALE, Vector(1, 2, 3)}, {VSLNOISE_GAIN, 0.5}}, surface,
			Vector(1.23, 1.14, 0.93)},
		{"fractal 3-D grey", {{VSLNOISE_SPACE, space3d}, {VSLNOISE_KIND, fractal}, {VSLNOISE_OUTPUT, grey}}, surface,
			Vector(1.23, 0.57, 0.31)},
		{"3-D without a point: UV", {{VSLNOISE_SPACE, space3d}, {VSLNOISE_OUTPUT, grey}}, corner, Vector(0.5, 0.5, 0)},
		{"grey, gain 0", {{VSLNOISE_OUTPUT, grey}, {VSLNOISE_GAIN, 0.0}}, corner, Vector(0.5, 0.5, 0)},
		{"mix, gain 0", {{VSLNOISE_GAIN, 0.0}}, corner, Vector(0.5, 0.5, 0)},
	};
	for(auto [name, values, cd, q] : cases)
	{
		SCOPED_TRACE(name);
		BaseShader* noise = shader(ID_VSL_NOISE, values);
		const BaseContainer& p = *noise->GetDataInstance();
		ASSERT_EQ(noise->InitRender(InitRenderStruct()), INITRENDERRESULT_OK);
		double n = 0;
		for(int octave = 0; octave < (p.GetInt32(VSLNOISE_KIND) == fractal ? 8 : 1); ++octave)
			n += std::pow(0.5, octave) * PerlinNoise::noise(q.x * std::pow(1.99, octave), q.y * std::pow(1.99, octave),
				q.z * std::pow(1.99, octave));
		ASSERT_NE(n, 0.0);
		// Grey: n times the gain; the mix: A + (n + 1) / 2 (B - A), times the
		// gain. The document scale is a float (0.01f is not 0.01).
		const Vector a = p.GetVector(VSLNOISE_COLOUR_A), b = p.GetVector(VSLNOISE_COLOUR_B);
		const Vector value = p.GetInt32(VSLNOISE_OUTPUT) == grey ? Vector(n, n, n) : a + (n + 1) * 0.5 * (b - a);
		expectNear(noise->Sample(&cd), value * p.GetFloat(VSLNOISE_GAIN), 1e-6);
	}
	GetWorldContainerInstance()->SetInt32(WPREF_UNITS, DOCUMENT_UNIT_M);
}

TEST_F(ShaderPlugins, GradientAndNormalOutput)
{
	// A (1, 0, 0), B (0, 1, 0), gain 2: 2 (A + t (B - A)) = (2 - 2t, 2t, 0);
	// radial t = 2 |(0.5 - u, 0.5 - v, w)|, unclamped.
	const std::tuple<int32_t, ChannelData, double> cases[] = {{1601, at(0.25, 0.9), 0.25}, {1602, at(0.9, 0.75), 0.75},
		{1603, at(0.5, 0.5), 0}, {1603, at(0.5, 0.5, 0.3), 0.6}, {1603, at(0, 0), std::sqrt(2.0)}};
	for(auto [direction, cd, t] : cases)
	{
		SCOPED_TRACE(t);
		BaseShader* gradient = shader(ID_VSL_GRADIENT, {{VSLGRADIENT_DIRECTION, direction},
			{VSLGRADIENT_COLOUR_A, Vector(1, 0, 0)}, {VSLGRADIENT_COLOUR_B, Vector(0, 1, 0)}, {VSLGRADIENT_GAIN, 2.0}});
		ASSERT_EQ(gradient->InitRender(InitRenderStruct()), INITRENDERRESULT_OK);
		expectNear(gradient->Sample(&cd), Vector(2 - 2 * t, 2 * t, 0));
	}

	// Normal, A white, B (0, 0.5, 1), no gain. Without a point the channel's
	// direction and normal count, |cos| = 0.8; with one, its ray and shading
	// normal, |cos| = 0.6.
	BaseShader* normal = shader(ID_VSL_NORMAL, {{VSLNORMAL_COLOUR_B, Vector(0, 0.5, 1)}});
	normal->InitRender(InitRenderStruct());
	ChannelData cd = at(0.5, 0.5);
	cd.n = Vector(0, 0, 1);
	cd.d = Vector(0, 0.6, -0.8);
	expectNear(normal->Sample(&cd), Vector(0.2, 0.6, 1));
	VolumeData vd;
	vd.ray_dir = Vector(-0.6, 0, 0.8);
	vd.bumpn = Vector(1, 0, 0);
	cd.vd = &vd;
	expectNear(normal->Sample(&cd), Vector(0.4, 0.7, 1));
}

TEST_F(ShaderPlugins, BlendOutput)
{
	ChannelData cd = at(0.25, 0.5);
	// Empty inputs are white; (operation, gain, each component).
	const std::tuple<int32_t, double, double> empty[] = {{1603, 1, 2}, {1604, 1, 0}, {1605, 3, 3}, {1700, 2, 2}};
	for(auto [operation, gain, expected] : empty)
	{
		BaseShader* blend = shader(ID_VSL_BLEND, {{VSLBLEND_OPERATION, operation}, {VSLBLEND_GAIN, gain}});
		ASSERT_EQ(blend->InitRender(InitRenderStruct()), INITRENDERRESULT_OK);
		EXPECT_EQ(blend->Sample(&cd), Vector(expected, expected, expected)) << operation;
	}

	// A gradient, 0.75 at u = 0.25, minus a host colour shader, which is no
	// input of a blend and counts as white.
	BaseShader* blend = shader(ID_VSL_BLEND, {{VSLBLEND_OPERATION, VSLBLEND_SUBTRACT}, {VSLBLEND_GAIN, 2.0}});
	BaseContainer& links = *blend->GetDataInstance();
	links.SetLink(VSLBLEND_INPUT_1, shader(ID_VSL_GRADIENT, {}, blend));
	links.SetLink(VSLBLEND_INPUT_2, shader(Xcolor, {{COLORSHADER_COLOR, Vector(0.5, 0.5, 0.5)}}, blend));
	blend->InitRender(InitRenderStruct());
	EXPECT_EQ(blend->Sample(&cd), Vector(-0.5, -0.5, -0.5));
	// Two gradients multiplied: 0.75 x 0.75 x 2.
	links.SetLink(VSLBLEND_INPUT_2, shader(ID_VSL_GRADIENT, {}, blend));
	links.SetInt32(VSLBLEND_OPERATION, VSLBLEND_MULTIPLY);
	blend->InitRender(InitRenderStruct());
	EXPECT_EQ(blend->Sample(&cd), Vector(1.125, 1.125, 1.125));
	// FreeRender clears the inputs: both then count as white.
	blend->FreeRender();
	EXPECT_EQ(blend->Sample(&cd), Vector(2, 2, 2));
}

TEST_F(ShaderPlugins, FreeTextSamplesWhiteAndGetsTheStarterOfItsChannel)
{
	BaseShader* loose = shader(ID_VSL_SHADER);
	ChannelData cd = at(0.3, 0.6);
	EXPECT_EQ(loose->Sample(&cd), Vector(1, 1, 1));
	loose->Message(0);
	EXPECT_EQ(loose->GetDataInstance()->GetString(VSLSHADER_TEXT), String("default"));

	// The text after a message to a shader in the link of a material.
	registerPlainPlugins(PluginKind::Material, {1024337, 1024999});
	auto textIn = [this](int32_t material, int32_t link, const char* text) {
		BaseMaterial* mat = BaseMaterial::Alloc(material);
		BaseShader* sh = shader(ID_VSL_SHADER, {{VSLSHADER_TEXT, String(text)}}, mat);
		mat->GetDataInstance()->SetLink(link, sh);
		sh->Message(0);
		const std::string result = sh->GetDataInstance()->GetString(VSLSHADER_TEXT).GetStdString();
		BaseMaterial::Free(mat);
		return result;
	};
	const std::pair<const char*, std::vector<int32_t>> starters[] = {
		{"def eval(vec3 pos) vec3:\n\tvec3(0.8)", {6118, 6064, 6274, 10016, 16016}},
		{"def eval(vec3 pos) real:\n\t1.0", {6200, 6205, 11016, 12016, 13016, 14016, 15016, 17016}},
		{"def eval() real:\n\t0.0", {6069, 6074, 6052}},
		{"def eval(vec3 pos) vec3 :\n\tvec3(0.0, 0.0, 1.0)", {6294}},
		{"unhandled channel", {6999}}};
	for(const auto& [starter, links] : starters)
		for(int32_t link : links)
			EXPECT_EQ(textIn(1024337, link, "default"), starter) << link;
	EXPECT_EQ(textIn(1024337, 6118, "edited"), "edited");
	EXPECT_EQ(textIn(1024999, 6118, "default"), "default");
}
