#include "scene/channel_params.h"
#include "scene/geometry_test_helpers.h"
#include "scene/render_filters.h"
#include "scene/rotation.h"
#include "scene/shader_info.h"
#include "scene/tex_coord_generator.h"
#include "support/exceptions.h"

#include <gtest/gtest.h>

using namespace Velorn;
using VelornTest::pathsOf;

namespace
{

template <class Value>
std::string textOf(const Value& value)
{
	BufferOStream stream;
	WriteContext context;
	value.writeXML(stream, 0, context);
	return stream.str();
}

} // namespace

TEST(ShaderInfo, IsEmptyWithoutParamsIncludesAndProgramWhateverItsTextures)
{
	EXPECT_TRUE(VelornTest::shaderUsing(nullptr, "t.png")->isEmpty());
	EXPECT_FALSE(VelornTest::shaderUsing("lib.vsl", nullptr)->isEmpty());
	ShaderInfo with_param;
	with_param.params.push_back(new RealShaderParam());
	EXPECT_FALSE(with_param.isEmpty());
	ShaderInfo with_program;
	with_program.shader = "x";
	EXPECT_FALSE(with_program.isEmpty());
}

TEST(ShaderInfo, DependenciesAreIncludesThenTexturesAndPathsAreMapped)
{
	Reference<ShaderInfo> info = VelornTest::shaderUsing("lib/noise.vsl", "tex/a.png");
	info->includes.push_back("lib/b.vsl");

	VisitOperation dependencies(VisitOperation::GetDependencies, "", "");
	info->doVisit(dependencies);
	EXPECT_EQ(pathsOf(dependencies), (std::vector<std::string>{"lib/noise.vsl", "lib/b.vsl", "tex/a.png"}));

	VisitOperation update(VisitOperation::UpdatePaths, "", "");
	update.path_map.insert("lib/noise.vsl", "copy/noise.vsl");
	update.path_map.insert("lib/b.vsl", "copy/b.vsl");
	update.path_map.insert("tex/a.png", "copy/a.png");
	info->doVisit(update);
	EXPECT_EQ(info->includes[0], "copy/noise.vsl");
	EXPECT_EQ(info->includes[1], "copy/b.vsl");
	EXPECT_EQ(info->textures[0].path, "copy/a.png");
}

TEST(ShaderParam, DefinitionsInTheShaderLanguage)
{
	RealShaderParam real;
	real.name = "gain_2";
	real.value = 0.5;
	EXPECT_EQ(real.getShaderDefinition(), "def paramgain_2() real : 0.5\n");

	IntShaderParam integer;
	integer.name = "Steps";
	integer.value = -7;
	EXPECT_EQ(integer.getShaderDefinition(), "def paramSteps() int : -7\n");

	Colour3ShaderParam colour;
	colour.name = "tint";
	colour.value = Vec3d(1, 0.25, 1e-7);
	EXPECT_EQ(colour.getShaderDefinition(), "def paramtint() vec3 : vec3(1, 0.25, 1e-7)\n");
}

TEST(ShaderParam, ABadNameFailsOnlyWhenTheDefinitionIsAsked)
{
	const char* const bad_names[] = {"a b", "gain-1", "t\xc3\xa9"};
	for(const char* bad_name : bad_names)
	{
		SCOPED_TRACE(bad_name);
		RealShaderParam param;
		param.name = bad_name;
		BufferOStream stream;
		param.writeXML(stream, 0);
		EXPECT_NE(stream.str().find("<real>"), std::string::npos);
		EXPECT_EQ(VelornTest::failureOf<VelornException>([&] { param.getShaderDefinition(); }),
			"Invalid character in shader parameter name: Only alphanumeric and underscore allowed: '" + std::string(bad_name) + "'");
	}
}

TEST(ChannelParams, TypeNumbersOfEachFamily)
{
	const std::pair<unsigned, unsigned> types[] = {
		{ConstantWavelengthDependentParam().getType(), 0},
		{ShaderWavelengthDependentParam().getType(), 1},
		{TextureWavelengthDependentParam().getType(), 2},
		{ConstantWavelengthIndependentParam().getType(), 0},
		{ShaderWavelengthIndependentParam().getType(), 1},
		{TextureWavelengthIndependentParam().getType(), 2},
		{ConstantDisplacementParam().getType(), 0},
		{ShaderDisplacementParam().getType(), 1},
		{TextureDisplacementParam().getType(), 2},
		{ConstantVolumeParam().getType(), 0},
		{ShaderVolumeParam().getType(), 1},
		{ShaderVec3Param().getType(), 0},
		{TextureVec3Param().getType(), 1},
		{UVTexCoordGenerator().getType(), 0},
		{AxisRotation().getType(), 1},
		{BlackBodySpectrum().getType(), 0},
		{PeakSpectrum().getType(), 1},
		{RGBSpectrum().getType(), 2},
		{RegularSpectrum().getType(), 3},
		{UniformSpectrum().getType(), 4},
		{SplatFilterBox().getType(), 3},
	};
	for(size_t i = 0; i < sizeof(types) / sizeof(types[0]); ++i)
		EXPECT_EQ(types[i].first, types[i].second) << "entry " << i;
}

TEST(ChannelParams, ShaderFormsWalkTheirShaderInfoAndTheOthersNothing)
{
	Reference<WavelengthDependentParam> shader(new ShaderWavelengthDependentParam(VelornTest::shaderUsing("a.vsl", "a.png")));
	Reference<DisplacementParam> shader_displacement(new ShaderDisplacementParam(VelornTest::shaderUsing("b.vsl", "b.png")));
	Reference<WavelengthIndependentParam> constant(new ConstantWavelengthIndependentParam(1));
	Reference<Vec3Param> texture(new TextureVec3Param(0));

	VisitOperation op(VisitOperation::GetDependencies, "", "");
	shader->doVisit(op, nullptr);
	constant->doVisit(op, nullptr);
	texture->doVisit(op, nullptr);
	shader_displacement->doVisit(op, nullptr);
	EXPECT_EQ(pathsOf(op), (std::vector<std::string>{"a.vsl", "a.png", "b.vsl", "b.png"}));
}

TEST(ChannelParams, ClonesAreDeepCopies)
{
	Reference<ConstantWavelengthDependentParam> constant(new ConstantWavelengthDependentParam(new UniformSpectrum(0.5)));
	Reference<ConstantWavelengthDependentParam> constant_copy = constant->clone().downcast<ConstantWavelengthDependentParam>();
	ASSERT_TRUE(constant_copy.nonNull());
	EXPECT_NE(constant_copy->spectrum, constant->spectrum);
	EXPECT_EQ(textOf(*constant_copy), textOf(*constant));

	Reference<ShaderWavelengthIndependentParam> shader(new ShaderWavelengthIndependentParam(VelornTest::shaderUsing("a.vsl", "a.png")));
	shader->shader_info->params.push_back(new IntShaderParam());
	Reference<ShaderWavelengthIndependentParam> shader_copy = shader->clone().downcast<ShaderWavelengthIndependentParam>();
	ASSERT_TRUE(shader_copy.nonNull());
	EXPECT_NE(shader_copy->shader_info, shader->shader_info);
	EXPECT_NE(shader_copy->shader_info->params[0], shader->shader_info->params[0]);
	EXPECT_EQ(textOf(*shader_copy), textOf(*shader));

	Reference<SphericalTexCoordGenerator> spherical(new SphericalTexCoordGenerator());
	spherical->rotation = new AxisRotation(Vec3d(1, 0, 0), 2);
	Reference<SphericalTexCoordGenerator> spherical_copy = spherical->clone().downcast<SphericalTexCoordGenerator>();
	ASSERT_TRUE(spherical_copy.nonNull());
	EXPECT_NE(spherical_copy->rotation, spherical->rotation);
	EXPECT_EQ(spherical_copy->rotation->getType(), 1u);

	Texture texture;
	texture.tex_coord_generation = spherical;
	EXPECT_NE(texture.copyDeep().tex_coord_generation, texture.tex_coord_generation);
}
