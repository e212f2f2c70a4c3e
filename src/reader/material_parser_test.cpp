#include "reader/material_parser.h"

#include "reader/channel_forms.h"
#include "reader/reader_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "scene/materials_other.h"
#include "support/allocation_probe.h"
#include "support/file_utils.h"
#include "support/string_utils.h"

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>

using namespace Velorn;
using namespace Velorn::MaterialParser;
using VelornTest::XMLText;

namespace
{

std::string failure(const std::function<void()>& f) { return VelornTest::failureOf<SceneParserExcep>(f); }

std::string numbers(const double* values, size_t count)
{
	std::string text;
	for(size_t i = 0; i < count; ++i)
		text += (i ? " " : "") + sceneNumberText(values[i]);
	return text;
}

std::string describe(const Reference<Spectrum>& spectrum)
{
	if(spectrum.isNull())
		return "null";
	if(auto rgb = spectrum.downcast<RGBSpectrum>())
		return "rgb " + numbers(&rgb->rgb.x, 3) + " gamma " + sceneNumberText(rgb->gamma);
	if(auto uniform = spectrum.downcast<UniformSpectrum>())
		return "uniform " + sceneNumberText(uniform->value);
	if(auto body = spectrum.downcast<BlackBodySpectrum>())
		return "blackbody " + sceneNumberText(body->temperature) + " " + sceneNumberText(body->gain);
	if(auto peak = spectrum.downcast<PeakSpectrum>())
		return "peak " + numbers(&peak->peak_min, 4);
	const Reference<RegularSpectrum> regular = spectrum.downcast<RegularSpectrum>();
	return "regular " + sceneNumberText(regular->start_wavelength) + " " + sceneNumberText(regular->end_wavelength) + " " +
		   toString(regular->num_values) + ": " + numbers(regular->values.data(), regular->values.size());
}

// "constant ...", "texture <index>", "shader <program>" or "null".
template <class Family>
std::string describe(const Reference<Family>& param)
{
	typedef ChannelForms<Family> Forms;
	if(param.isNull())
		return "null";
	if(auto texture = param.template downcast<typename Forms::Texture>())
		return "texture " + toString(texture->texture_index);
	if(auto shader = param.template downcast<typename Forms::Shader>())
		return "shader " + shader->shader_info->shader.str();
	if constexpr(std::is_same<Family, WavelengthDependentParam>::value)
		return "constant " + describe(param.template downcast<ConstantWavelengthDependentParam>()->spectrum);
	else if constexpr(!std::is_same<Family, Vec3Param>::value)
		return "constant " + sceneNumberText(param.template downcast<typename Forms::Constant>()->value);
	return "unknown";
}

// One channel of a material of kind M, described.
typedef std::function<std::string(const Material&)> Channel;

template <class M, class Param>
Channel channel(Reference<Param> M::*field)
{
	return [field](const Material& m) { return describe(dynamic_cast<const M&>(m).*field); };
}

Reference<Material> parse(const std::string& xml, const ParseNames& names = ParseNames())
{
	XMLText doc(xml);
	UID uid;
	return parseMaterial(doc.root(), "", uid, names);
}

// A material of name M with the given type element.
std::string material(const std::string& type_element) { return "<material><name>M</name>" + type_element + "</material>"; }

Reference<SceneNodeMaterial> materialNode(const char* name)
{
	Reference<SceneNodeMaterial> node(new SceneNodeMaterial());
	node->setName(name);
	return node;
}

ParseNames namesOf(std::initializer_list<const char*> materials, std::initializer_list<const char*> media)
{
	ParseNames names;
	for(const char* name : materials)
		names.material_names.insert(name, materialNode(name));
	for(const char* name : media)
	{
		Reference<SceneNodeMedium> node(new SceneNodeMedium());
		node->setName(name);
		names.medium_names.insert(name, node);
	}
	return names;
}

const char* const uniform_half = "<constant><uniform><value>0.5</value></uniform></constant>";

// What a reader makes of the root of a document, as text.
typedef std::function<std::string(const TiXmlElement&)> Read;

struct ReadCase
{
	std::string xml;
	// The result's text, or the failure message ("(no failure)" for a
	// reader that returns nothing).
	const char* expected;
};

void expectReads(const std::vector<ReadCase>& cases, const Read& read)
{
	for(const ReadCase& c : cases)
	{
		SCOPED_TRACE(c.xml);
		XMLText doc(c.xml);
		std::string result;
		const std::string message = failure([&] { result = read(doc.root()); });
		EXPECT_EQ(result.empty() ? message : result, c.expected);
	}
}

template <class Value>
Read returnsNothing(Value (*reader)(const TiXmlElement&, const std::string&))
{
	return [reader](const TiXmlElement& e) {
		reader(e, "");
		return std::string();
	};
}

std::string describeVolume(const TiXmlElement& element)
{
	const Reference<VolumeParam> param = parseVolumeParam(element, "");
	if(auto constant = param.downcast<ConstantVolumeParam>())
		return "constant " + describe(constant->spectrum);
	if(auto shader = param.downcast<ShaderVolumeParam>())
		return "shader " + shader->shader_info->shader.str() + " " + toString(shader->wavelength_dependent);
	const Reference<VoxelVolumeParam> voxel = param.downcast<VoxelVolumeParam>();
	return "voxel " + voxel->voxeldata_path.str() + " " + toString(voxel->wavelength_dependent);
}

void expectMaterialFailures(const std::vector<ReadCase>& cases, const ParseNames& names = ParseNames())
{
	expectReads(cases, [&](const TiXmlElement& e) {
		UID uid;
		parseMaterial(e, "", uid, names);
		return std::string();
	});
}

} // namespace

// Every type reads back in the material round trips; here the search order
// decides between several type elements.
TEST(MaterialParser, TheTypeIsFoundByTheOrderOfTheSearch)
{
	const struct
	{
		const char* type_elements;
		unsigned type;
	} cases[] = {
		{"<phong/><diffuse/>", MaterialType::Diffuse},
		{"<exit_portal/><null_material/>", MaterialType::Null},
		{"<fast_sss/><ABg/><measured/><oren_nayar/>", MaterialType::OrenNayar},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.type_elements);
		const Reference<Material> m = parse(material(c.type_elements));
		EXPECT_EQ(m->getType(), c.type);
		EXPECT_EQ(m->name, "M");
	}
}

TEST(MaterialParser, MaterialElement)
{
	XMLText doc(
		"<material><uid>12</uid><name> Wood </name><diffuse/><backface_emit>true</backface_emit><scatter_uids/></material>");
	UID uid;
	const Reference<Material> m = parseMaterial(doc.root(), "", uid, ParseNames());
	EXPECT_EQ(uid, UID(12));
	EXPECT_EQ(m->name, " Wood ");
	EXPECT_TRUE(m->backface_emit);

	XMLText plain(material("<diffuse/>"));
	parseMaterial(plain.root(), "", uid, ParseNames());
	EXPECT_FALSE(uid.valid());

	expectMaterialFailures({
		{"<material><name>M</name></material>",
			"no material element of any type found   (In element 'material', around line 1, column 1)"},
		{"<material>\n<diffuse/>\n</material>",
			"could not find element 'name'.  (In element 'material', around line 1, column 1)"},
		{"<material><name>M</name><diffuse/><glow/></material>",
			"Found unexpected element 'glow'.  (In element 'material', around line 1, column 1)"},
		{"<material><name>M</name><uid>x</uid><diffuse/></material>",
			"Failed to parse unsigned integer from 'x'.  (In element 'uid', around line 1, column 25)"},
		{material("<diffuse><sigma/></diffuse>"),
			"Found unexpected element 'sigma'.  (In element 'diffuse', around line 1, column 25)"},
		{material("<diffuse/><shadow_catcher>yes</shadow_catcher>"),
			"Invalid boolean value (Should be 'true' or 'false').  (In element 'shadow_catcher', around line 1, column 35)"},
		{material("<specular>\n<internal_medium_uid>1</internal_medium_uid>\n</specular>"),
			"could not find element 'transparent'.  (In element 'specular', around line 1, column 25)"},
		{material("<sunsky>\n<turbidity>2</turbidity>\n</sunsky>"),
			"could not find element 'sundir'.  (In element 'sunsky', around line 1, column 25)"},
		{material("<plugin>\n<plugin_name>p</plugin_name>\n</plugin>"),
			"could not find element 'material_name'.  (In element 'plugin', around line 1, column 25)"},
		{material("<phong>\n<layer>-1</layer>\n</phong>"),
			"Failed to parse unsigned integer from '-1'.  (In element 'layer', around line 2, column 1)"},
	});
}

// Several old element names are still read; where a file holds more than one
// form of a channel the old ones win, in the order of the table of forms.
TEST(MaterialParser, OldFormsAndTheirPriority)
{
	const Channel albedo = [](const Material& m) {
		if(auto d = dynamic_cast<const DiffuseMaterial*>(&m))
			return describe(d->albedo);
		if(auto t = dynamic_cast<const DiffuseTransmitter*>(&m))
			return describe(t->albedo);
		return describe(dynamic_cast<const OrenNayarMaterial&>(m).albedo);
	};
	const Channel bump = channel(&SurfaceMaterial::bump);
	const Channel displacement = channel(&SurfaceMaterial::displacement);
	const Channel phong_diffuse = channel(&PhongMaterial::diffuse_albedo);
	const Channel phong_specular = channel(&PhongMaterial::specular_reflectivity);
	const Channel phong_exponent = channel(&PhongMaterial::exponent);
	const Channel fresnel_scale = channel(&PhongMaterial::fresnel_scale);
	const Channel blend = channel(&BlendMaterial::blend);

	const std::string texture_a = "<texture><path>a.png</path></texture>";
	const std::string in_place_b = "<path>b.png</path>";
	const std::string spectrum_half = "<uniform><value>0.5</value></uniform>";
	const std::string albedo_seven = "<albedo><constant><uniform><value>0.7</value></uniform></constant></albedo>";
	const std::string targets = "<a_mat_uid>1</a_mat_uid><b_mat_uid>2</b_mat_uid>";
	const struct
	{
		std::string type_element;
		Channel channel;
		const char* expected;
	} cases[] = {
		{"<diffuse>" + albedo_seven + "<albedo_spectrum>" + spectrum_half +
				"</albedo_spectrum><colour>0.1 0.2 0.3</colour></diffuse>",
			albedo, "constant rgb 0.1 0.2 0.3 gamma 2.2"},
		{"<diffuse>" + albedo_seven + "<albedo_spectrum>" + spectrum_half + "</albedo_spectrum></diffuse>", albedo,
			"constant uniform 0.5"},
		{"<diffuse>" + albedo_seven + "</diffuse>", albedo, "constant uniform 0.7"},
		{"<diffuse/>", albedo, "null"},
		// A texture in place joins the textures after those of the material.
		{"<diffuse>" + texture_a + albedo_seven + "<albedo_texture>" + in_place_b + "</albedo_texture></diffuse>", albedo,
			"texture 1"},
		{"<diffuse_transmitter><colour>1 1 0</colour></diffuse_transmitter>", albedo, "constant rgb 1 1 0 gamma 2.2"},
		{"<diffuse_transmitter/>", albedo, "constant rgb 0.5 0.5 0.5 gamma 2.2"},
		{"<oren_nayar><albedo_spectrum>" + spectrum_half + "</albedo_spectrum></oren_nayar>", albedo, "constant uniform 0.5"},
		{"<diffuse><bump>" + std::string(uniform_half) + "</bump><bump_map>" + in_place_b + "</bump_map></diffuse>", bump,
			"texture 0"},
		{"<specular><internal_medium_uid>1</internal_medium_uid><transparent>false</transparent><displacement_map>" + in_place_b +
				"</displacement_map></specular>",
			displacement, "texture 0"},
		{"<phong><diffuse_albedo>" + std::string(uniform_half) + "</diffuse_albedo><diffuse_albedo_spectrum>" + spectrum_half +
				"</diffuse_albedo_spectrum><diffuse>0.1 0.2 0.3</diffuse></phong>",
			phong_diffuse, "constant rgb 0.1 0.2 0.3 gamma 2.2"},
		{"<phong><diffuse_albedo><texture><texture_index>0</texture_index></texture></diffuse_albedo><diffuse_albedo_spectrum>" +
				spectrum_half + "</diffuse_albedo_spectrum>" + texture_a + "</phong>",
			phong_diffuse, "constant uniform 0.5"},
		{"<phong><specular_reflectivity>" + std::string(uniform_half) +
				"</specular_reflectivity><specular_reflectivity_spectrum>" +
				"<blackbody><temperature>5000</temperature><gain>2</gain></blackbody></specular_reflectivity_spectrum></phong>",
			phong_specular, "constant blackbody 5000 2"},
		{"<phong><exponent>100</exponent><exponent_map>" + in_place_b + "</exponent_map></phong>", phong_exponent, "texture 0"},
		// A plain number is the constant; otherwise one of the forms.
		{"<phong><exponent> 100 </exponent></phong>", phong_exponent, "constant 100"},
		{"<phong><exponent><constant>50</constant></exponent></phong>", phong_exponent, "constant 50"},
		{"<phong/>", phong_exponent, "constant 5000"},
		{"<phong><fresnel_scale>0.5</fresnel_scale></phong>", fresnel_scale, "constant 0.5"},
		{"<blend>" + targets + "<blend>" + uniform_half + "</blend><blend_map>" + in_place_b +
				"</blend_map><blend_factor>0.25</blend_factor></blend>",
			blend, "constant 0.25"},
		{"<blend>" + targets + "<blend><constant>0.75</constant></blend><blend_map>" + in_place_b + "</blend_map></blend>", blend,
			"texture 0"},
		{"<blend>" + targets + "</blend>", blend, "constant 0.5"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.type_element);
		const Reference<Material> m = parse(material(c.type_element));
		EXPECT_EQ(c.channel(*m), c.expected);
	}
}

TEST(MaterialParser, ChannelForms)
{
	const std::string program = "<shader><shader><![CDATA[return 1;]]></shader></shader>";
	const std::string index_one = "<texture><texture_index>1</texture_index></texture>";
	expectReads(
		{
			{"<c>" + std::string(uniform_half) + "</c>", "constant uniform 0.5"},
			{"<c>" + index_one + "</c>", "texture 1"},
			{"<c>" + program + "</c>", "shader return 1;"},
			{"<albedo/>", "Failed to find child for element 'albedo' - Child should be one of 'constant', 'texture', 'shader'.  "
						  "(In element 'albedo', around line 1, column 1)"},
			{"<c><constant/></c>",
				"Failed to find child for element 'constant' - Child should be one of 'rgb', 'blackbody', 'peak', "
				"'uniform', 'regular_tabulated'.  (In element 'constant', around line 1, column 4)"},
		},
		[](const TiXmlElement& e) { return describe(parseWavelengthDependentParam(e, "", 2)); });
	expectReads(
		{
			{"<c><constant>0.25</constant></c>", "constant 0.25"},
			{"<c>" + index_one + "</c>", "texture 1"},
			{"<c><constant>x</constant></c>",
				"Failed to parse double from 'x'.  (In element 'constant', around line 1, column 4)"},
		},
		[](const TiXmlElement& e) { return describe(parseWavelengthIndependentParam(e, "", 2)); });
	expectReads(
		{
			{"<c>" + program + "</c>", "shader return 1;"},
			{"<bump><constant>1</constant>" + index_one + "</bump>",
				"Found unexpected element 'texture,  already parsed mutually exclusive element 'constant'.  (In element 'bump', "
				"around line 1, column 1)"},
		},
		[](const TiXmlElement& e) { return describe(parseDisplacementParam(e, "", 2)); });
	expectReads(
		{
			{"<c>" + index_one + "</c>", "texture 1"},
			{"<c>" + program + "</c>", "shader return 1;"},
			{"<normal_map><constant>1</constant></normal_map>",
				"Found unexpected element 'constant'.  (In element 'normal_map', around line 1, column 1)"},
			{"<normal_map/>",
				"Failed to find child for element 'normal_map' - Child should be one of 'texture', 'shader'.  (In element "
				"'normal_map', around line 1, column 1)"},
		},
		[](const TiXmlElement& e) { return describe(parseVec3Param(e, "", 2)); });
}

TEST(MaterialParser, TextureIndexMustNameATexture)
{
	const std::string form = "<c>\n<texture>\n<texture_index>";
	const auto read = [&](const char* index, size_t count) {
		XMLText doc(form + index + "</texture_index>\n</texture>\n</c>");
		return failure([&] { parseWavelengthIndependentParam(doc.root(), "", count); });
	};
	EXPECT_EQ(read("0", 1), "(no failure)");
	EXPECT_EQ(read("1", 1),
		"Texture index '1' is out of bounds: this material has 1 textures.  (In element 'texture', around line 2, column 1)");
	EXPECT_EQ(read("-1", 3),
		"Texture index '-1' is out of bounds: this material has 3 textures.  (In element 'texture', around line 2, column 1)");
}

TEST(MaterialParser, Textures)
{
	XMLText plain("<texture><path>maps/wood.png</path></texture>");
	const Texture wood = parseTexture(plain.root(), "scenes");
	EXPECT_EQ(wood.path.str(), FileUtils::join("scenes", "maps/wood.png"));

	XMLText absolute("<texture><path>/abs/a.png</path><tex_coord_generation><uv/></tex_coord_generation></texture>");
	const Texture a = parseTexture(absolute.root(), "scenes");
	EXPECT_EQ(a.path.str(), "/abs/a.png");
	const Reference<UVTexCoordGenerator> identity = a.tex_coord_generation.downcast<UVTexCoordGenerator>();
	EXPECT_EQ(numbers(identity->matrix.e, 4), "1 0 0 1");
	EXPECT_EQ(numbers(&identity->translation.x, 2), "0 0");

	expectReads(
		{
			{"<texture><a>1</a></texture>", "could not find element 'path'.  (In element 'texture', around line 1, column 1)"},
			{"<texture><path>a</path><tex_coord_generation>\n<uv><scale/></uv>\n</tex_coord_generation></texture>",
				"Found unexpected element 'scale'.  (In element 'uv', around line 2, column 1)"},
			{"<texture><path>a</path><tex_coord_generation>\n<cubic/>\n</tex_coord_generation></texture>",
				"Found unexpected element 'cubic'.  (In element 'tex_coord_generation', around line 1, column 24)"},
			{"<texture><path>a</path><smooth>1</smooth></texture>",
				"Invalid boolean value (Should be 'true' or 'false').  (In element 'smooth', around line 1, column 24)"},
		},
		returnsNothing(parseTexture));
}

TEST(MaterialParser, ShaderInfoAndParams)
{
	XMLText doc(
		"<shader>"
		"<param><real><name>gain</name><description>Gain</description><min>0</min><max>10</max><value>2.5</value></real></param>"
		"<include>lib/noise.vsl</include>"
		"<param><int><name>steps</name><description></description><min>-3</min><max>8</max><value>4</value></int></param>"
		"<texture><path>t.png</path></texture>"
		"<param><colour3><name>tint</name><description><![CDATA[  padded]]></description><value>1 0.5 0</value></colour3></param>"
		"<shader><![CDATA[def eval() real : paramgain()]]></shader></shader>");
	const Reference<ShaderInfo> info = parseShaderInfo(doc.root(), "lib_dir");
	EXPECT_EQ(info->shader.str(), "def eval() real : paramgain()");
	ASSERT_EQ(info->includes.size(), 1u);
	EXPECT_EQ(info->includes[0].str(), FileUtils::join("lib_dir", "lib/noise.vsl"));
	ASSERT_EQ(info->textures.size(), 1u);
	EXPECT_EQ(info->textures[0].path.str(), FileUtils::join("lib_dir", "t.png"));
	// The values of each kind come back in the shader info file's round trip.
	ASSERT_EQ(info->params.size(), 3u);
	EXPECT_EQ(info->params[0]->getType(), 0u);
	EXPECT_EQ(info->params[1]->getType(), 1u);
	EXPECT_EQ(info->params[2]->getType(), 3u);
	EXPECT_EQ(info->params[2]->description, "  padded");

	expectReads(
		{
			{"<shader><include>a</include></shader>",
				"could not find element 'shader'.  (In element 'shader', around line 1, column 1)"},
			{"<shader><param><bool/></param><shader/></shader>", "No suitable child element found for param element."},
			{"<shader><param><int><name>n</name><description/><min>0</min><max>1.5</max><value>1</value></int></param><shader/></"
			 "shader>",
				"Parse error while parsing integer from '1.5'.  (In element 'max', around line 1, column 61)"},
			{"<shader><param><real><description/><min>0</min><max>1</max><value>1</value></real></param><shader/></shader>",
				"could not find element 'name'.  (In element 'real', around line 1, column 16)"},
		},
		returnsNothing(parseShaderInfo));
}

TEST(MaterialParser, Spectra)
{
	const auto regular = [](const char* start, const char* end, const char* count, const char* values) {
		return std::string("<c><regular_tabulated><start_wavelength>") + start + "</start_wavelength><end_wavelength>" + end +
			   "</end_wavelength><num_values>" + count + "</num_values><values>" + values + "</values></regular_tabulated></c>";
	};
	expectReads(
		{
			{"<c><rgb><rgb>0.5 0.25 1</rgb></rgb></c>", "rgb 0.5 0.25 1 gamma 2.2"},
			{"<c><rgb><rgb>0.5 0.25 1</rgb><gamma>1</gamma></rgb></c>", "rgb 0.5 0.25 1 gamma 1"},
			{"<c><blackbody><temperature>6500</temperature><gain>1</gain></blackbody></c>", "blackbody 6500 1"},
			{"<c><peak><peak_min>4e-7</peak_min><peak_width>5e-8</peak_width><peak_value>2</peak_value><base_value>0</"
			 "base_value></peak></c>",
				"peak 4e-7 5e-8 2 0"},
			{regular("4e-7", "7e-7", "3", "0.1 0.5 1e21 "), "regular 4e-7 7e-7 3: 0.1 0.5 1e21"},
			{regular("0.4e-6", "0.7e-6", "2", "\n1\n2\n"), "regular 4e-7 7e-7 2: 1 2"},
			{regular("4e-7", "7e-7", "1", "1"), "num_values must be >= 2."},
			{regular("4e-7", "7e-7", "1000001", "1"), "num_values must be <= 1e6."},
			{regular("0.5e-6", "7e-7", "2", "1 2"), "start_wavelength must be <= 0.4e-6 m (400 nm)."},
			// The message of the end names the start.
			{regular("4e-7", "6.9e-7", "2", "1 2"), "start_wavelength must be <= 0.7e-6 m (700 nm)."},
			{regular("4e-7", "7e-7", "3", "1 2"), "Syntax error while parsing data."},
			{regular("4e-7", "7e-7", "2", "1,2"), "Syntax error while parsing data."},
			{regular("4e-7", "7e-7", "2", "1 2 3"), "Syntax error while parsing data."},
			{"<c><regular_tabulated><end_wavelength>7e-7</end_wavelength></regular_tabulated></c>",
				"could not find element 'start_wavelength'.  (In element 'regular_tabulated', around line 1, column 4)"},
			{"<c><uniform/><rgb/></c>", "Found unexpected element 'rgb,  already parsed mutually exclusive element 'uniform'.  "
										"(In element 'c', around line 1, column 1)"},
		},
		[](const TiXmlElement& e) { return describe(parseSpectrum(e)); });
}

TEST(MaterialParser, TabulatedData)
{
	const auto table = [](const char* start, const char* end, const char* rows, const char* columns, const char* values) {
		return std::string("<t><start_wavelength>") + start + "</start_wavelength><end_wavelength>" + end +
			   "</end_wavelength><num_rows>" + rows + "</num_rows><num_columns>" + columns + "</num_columns><values>" + values +
			   "</values></t>";
	};
	XMLText good(table("3.8e-7", "7.8e-7", "2", "3", "\n1 2 3\n4 5 6\n\t"));
	const Reference<TabulatedSpectralData> data = parseTabulatedSpectralData(good.root());
	EXPECT_EQ(data->start_wavelength, 3.8e-7);
	EXPECT_EQ(data->end_wavelength, 7.8e-7);
	EXPECT_EQ(data->num_rows, 2);
	EXPECT_EQ(data->num_columns, 3);
	EXPECT_EQ(numbers(data->values.data(), data->values.size()), "1 2 3 4 5 6");

	expectReads(
		{
			{table("4e-7", "7e-7", "1", "2", "1 2"), "num_rows must be >= 2."},
			{table("4e-7", "7e-7", "1000001", "2", "1 2"), "num_rows must be <= 1e6."},
			{table("4e-7", "7e-7", "2", "-5", "1 2"), "num_columns must be >= 2."},
			{table("4e-7", "7e-7", "2", "1000001", "1 2"), "num_columns must be <= 1e6."},
			{table("5e-7", "7e-7", "2", "2", "1 2 3 4"), "start_wavelength must be <= 0.4e-6 m (400 nm)."},
			{table("4e-7", "6e-7", "2", "2", "1 2 3 4"), "end_wavelength must be >= 0.7e-6 m (700 nm)."},
			{table("4e-7", "7e-7", "2", "2", "1 2 3"), "Reached end of string while parsing data."},
			{table("4e-7", "7e-7", "2", "2", "1 2 x 4"), "Syntax error while parsing data."},
			{table("4e-7", "7e-7", "2", "2", "1 2 3 4\n"), "(no failure)"},
			{table("4e-7", "7e-7", "2", "2", "1 2 3 4x"), "Syntax error while parsing data."},
			{table("4e-7", "7e-7", "2", "2", "1 2 3 4 5"), "Syntax error while parsing data."},
			{"<t><start_wavelength>4e-7</start_wavelength><end_wavelength>7e-7</end_wavelength><num_rows>2</num_rows></t>",
				"could not find element 'num_columns'.  (In element 't', around line 1, column 1)"},
		},
		[](const TiXmlElement& e) {
			parseTabulatedSpectralData(e);
			return std::string();
		});
}

// A count that the text cannot hold fails as soon as the numbers run out,
// without reserving memory for the count first.
TEST(MaterialParser, LargeCountsInSmallTextsAllocateLittle)
{
	XMLText spectrum("<c><regular_tabulated><start_wavelength>4e-7</start_wavelength><end_wavelength>7e-7</end_wavelength>"
					 "<num_values>1000000</num_values><values>1 2 3</values></regular_tabulated></c>");
	VelornTest::resetLargestAllocation();
	EXPECT_EQ(failure([&] { parseSpectrum(spectrum.root()); }), "Syntax error while parsing data.");
	EXPECT_LT(VelornTest::largestAllocation(), 4096u);

	XMLText table("<t><start_wavelength>4e-7</start_wavelength><end_wavelength>7e-7</end_wavelength><num_rows>1000000</num_rows>"
				  "<num_columns>1000000</num_columns><values>1 2 3</values></t>");
	VelornTest::resetLargestAllocation();
	EXPECT_EQ(failure([&] { parseTabulatedSpectralData(table.root()); }), "Reached end of string while parsing data.");
	EXPECT_LT(VelornTest::largestAllocation(), 4096u);
}

// References by name resolve to the node and leave the UID invalid; their
// binding comes back in the round trips of the _names files.
TEST(MaterialParser, MediumReferences)
{
	const ParseNames names = namesOf({}, {"Water"});
	const Reference<GlossyTransparent> frosted =
		parse(material("<glossy_transparent><internal_medium_uid>3</internal_medium_uid></glossy_transparent>"))
			.downcast<GlossyTransparent>();
	EXPECT_EQ(frosted->internal_medium_uid, UID(3));
	EXPECT_TRUE(frosted->internal_medium.isNull());

	// A diffuse transmitter may have no medium, as its writer leaves an
	// absent one out.
	const Reference<DiffuseTransmitter> leaf = parse(material("<diffuse_transmitter/>")).downcast<DiffuseTransmitter>();
	EXPECT_TRUE(leaf->internal_medium.isNull());
	EXPECT_FALSE(leaf->internal_medium_uid.valid());

	// Names are case-sensitive; every kind words the failure as specular.
	expectMaterialFailures(
		{
			{material("<diffuse_transmitter><internal_medium_name>water</internal_medium_name></diffuse_transmitter>"),
				"Error while loading specular: medium with name 'water' not already defined in scene file.  (In element "
				"'diffuse_transmitter', around line 1, column 25)"},
			{material("<glossy_transparent/>"),
				"could not find element 'internal_medium_name'.  (In element 'glossy_transparent', around line 1, column 25)"},
		},
		names);
}

// A name refers to a material that stands before in the file.
TEST(MaterialParser, MaterialNamesReferBackwards)
{
	const ParseNames names = namesOf({"Red", "Blue"}, {});
	const Reference<BlendMaterial> mix =
		parse(material("<blend><a_name>Red</a_name><b_mat_uid>7</b_mat_uid></blend>"), names).downcast<BlendMaterial>();
	EXPECT_EQ(mix->a_mat.getPointer(), names.material_names.find("Red")->getPointer());
	EXPECT_FALSE(mix->a_mat_uid.valid());
	EXPECT_TRUE(mix->b_mat.isNull());
	EXPECT_EQ(mix->b_mat_uid, UID(7));
	// A sum's lists stay side by side when names and UIDs mix.
	const Reference<SumMaterial> sum = parse(material("<sum><mat><mat_name>Blue</mat_name><weight><constant>1</constant></weight></mat>"
														  "<mat><mat_uid>6</mat_uid><weight><constant>1</constant></weight></mat></sum>"),
		names)
										   .downcast<SumMaterial>();
	ASSERT_EQ(sum->materials.size(), 2u);
	ASSERT_EQ(sum->mat_uids.size(), 2u);
	EXPECT_EQ(sum->materials[0].getPointer(), names.material_names.find("Blue")->getPointer());
	EXPECT_TRUE(sum->materials[1].isNull());
	EXPECT_EQ(sum->mat_uids[1], UID(6));
	// Read by name on both sides, which no round trip of a written file does.
	const Reference<DoubleSidedThinMaterial> sheet = parse(
		material("<double_sided_thin><front_material_name>Red</front_material_name><back_material_name>Blue</back_material_name>"
				 "</double_sided_thin>"),
		names)
														 .downcast<DoubleSidedThinMaterial>();
	EXPECT_EQ(sheet->front_material.getPointer(), mix->a_mat.getPointer());
	EXPECT_EQ(sheet->back_material.getPointer(), names.material_names.find("Blue")->getPointer());

	expectMaterialFailures(
		{
			{material("<blend><a_name>Red</a_name><b_name>Green</b_name></blend>"),
				"Material 'Green' is not defined.   (In element 'blend', around line 1, column 25)"},
			{material("<sum>\n<mat><mat_name>Green</mat_name><weight><constant>1</constant></weight></mat></sum>"),
				"Material 'Green' is not defined.   (In element 'mat', around line 2, column 1)"},
			{material("<sum>\n<mat><mat_uid>1</mat_uid></mat></sum>"),
				"Failed to find expected element 'weight'.  (In element 'mat', around line 2, column 1)"},
			{material("<sum>\n<mat><mat_uid>1</mat_uid><weight><constant>1</constant></weight><scale/></mat></sum>"),
				"Found unexpected element 'scale'.  (In element 'mat', around line 2, column 1)"},
		},
		names);
}

TEST(MaterialParser, PluginParams)
{
	const Reference<PluginMaterial> velvet =
		parse(material("<plugin><plugin_name>velvet</plugin_name><material_name>Crushed</material_name><layer>4</layer>"
					   "<param><name>sheen</name><wavelength_dependent>" +
					   std::string(uniform_half) +
					   "</wavelength_dependent></param>"
					   "<param><name>pile</name><wavelength_independent><constant>2</constant></wavelength_independent></param>"
					   "<param><name>height</name><displacement><constant>0.1</constant></displacement></param>"
					   "<param><name>fuzz</name><volume><voxel><voxeldata_path>f.vox</voxeldata_path><wavelength_dependent>true"
					   "</wavelength_dependent></voxel></volume></param>"
					   "<param><name>n</name><vec3><shader><shader>n</shader></shader></vec3></param></plugin>"))
			.downcast<PluginMaterial>();
	EXPECT_EQ(velvet->plugin_name, "velvet");
	EXPECT_EQ(velvet->material_name, "Crushed");
	EXPECT_EQ(velvet->layer, 4u);
	ASSERT_EQ(velvet->wavelength_dependent.size(), 1u);
	EXPECT_EQ(velvet->wavelength_dependent[0].name, "sheen");
	EXPECT_EQ(describe(velvet->wavelength_dependent[0].param), "constant uniform 0.5");
	ASSERT_EQ(velvet->wavelength_independent.size(), 1u);
	EXPECT_EQ(describe(velvet->wavelength_independent[0].param), "constant 2");
	ASSERT_EQ(velvet->displacement.size(), 1u);
	EXPECT_EQ(describe(velvet->displacement[0].param), "constant 0.1");
	ASSERT_EQ(velvet->volume.size(), 1u);
	EXPECT_EQ(velvet->volume[0].name, "fuzz");
	EXPECT_EQ(velvet->volume[0].param->getType(), 2u);
	ASSERT_EQ(velvet->vec3.size(), 1u);
	EXPECT_EQ(describe(velvet->vec3[0].param), "shader n");

	expectMaterialFailures({
		{material("<plugin><plugin_name>p</plugin_name><material_name>m</material_name>\n<param><name>x</name><colour/></param></"
				  "plugin>"),
			"failed to find valid param type.  (In element 'param', around line 2, column 1)"},
	});
}

TEST(MaterialParser, VolumeParams)
{
	expectReads(
		{
			{"<v><constant><uniform><value>2</value></uniform></constant></v>", "constant uniform 2"},
			{"<v><shader><shader>v</shader><wavelength_dependent>true</wavelength_dependent></shader></v>", "shader v true"},
			{"<v><voxel><voxeldata_path>smoke &amp; "
			 "fire.vox</voxeldata_path><wavelength_dependent>false</wavelength_dependent></voxel></v>",
				"voxel smoke & fire.vox false"},
			{"<v><shader><shader>v</shader></shader></v>",
				"could not find element 'wavelength_dependent'.  (In element 'shader', around line 1, column 4)"},
			{"<v><texture><texture_index>0</texture_index></texture></v>",
				"Found unexpected element 'texture'.  (In element 'v', around line 1, column 1)"},
		},
		describeVolume);
}

TEST(MaterialParser, Media)
{
	const auto read = [](const std::string& xml, UID& uid) {
		XMLText doc(xml);
		return parseMedium(doc.root(), "", uid);
	};
	const std::string coefficients = "<ior>1</ior><cauchy_b_coeff>0</cauchy_b_coeff>";
	const std::string basic = "<basic>" + coefficients +
		"<absorption_coefficient_spectrum><uniform><value>1</value></uniform></absorption_coefficient_spectrum>";
	const auto scattering = [](const std::string& phase_function) {
		return "<subsurface_scattering><scattering_coefficient_spectrum><uniform><value>20</value></uniform>"
			   "</scattering_coefficient_spectrum>" + phase_function + "</subsurface_scattering>";
	};
	// A medium without precedence has 2, not the class's default of 10.
	UID uid;
	const Reference<BasicMedium> water = read("<medium><name>Water</name>" + basic + "</basic></medium>", uid).downcast<BasicMedium>();
	EXPECT_EQ(water->precedence, 2);
	EXPECT_EQ(water->name, "Water");
	EXPECT_FALSE(uid.valid());
	EXPECT_EQ(water->step_size, 0.1);

	// The full media come back in the round trips of the medium files. Here:
	// the type is found by the order of the search, and a spectrum in a
	// scattering coefficient.
	const Reference<Medium> skin = read("<medium><uid>4</uid><name>Skin</name><atmosphere/>" + basic +
			scattering("<phase_function><uniform/></phase_function>") + "</basic></medium>",
		uid);
	EXPECT_EQ(uid, UID(4));
	const Reference<SubsurfaceScattering> skin_scattering = skin.downcast<BasicMedium>()->subsurface_scattering;
	EXPECT_EQ(describe(skin_scattering->scattering_coefficient.downcast<ConstantVolumeParam>()->spectrum), "uniform 20");
	EXPECT_EQ(skin_scattering->phase_function->getType(), 0u);

	const char* const no_phase_function =
		"No phase function defined for medium.  (In element 'subsurface_scattering', around line 2, column 1)";
	expectReads(
		{
			{"<medium><name>M</name></medium>", "Medium type not found.   (In element 'medium', around line 1, column 1)"},
			{"<medium><name>M</name><basic/><colour/></medium>",
				"Found unexpected element 'colour'.  (In element 'medium', around line 1, column 1)"},
			{"<medium><name>M</name><basic><ior>1</ior></basic></medium>",
				"could not find element 'cauchy_b_coeff'.  (In element 'basic', around line 1, column 23)"},
			{"<medium><name>M</name><basic>" + coefficients + "</basic></medium>",
				"Failed to find expected element 'absorption_coefficient'.  (In element 'basic', around line 1, column 23)"},
			{"<medium><name>M</name>" + basic + "\n" + scattering("") + "</basic></medium>", no_phase_function},
			{"<medium><name>M</name>" + basic + "\n" + scattering("<phase_function><isotropic/></phase_function>") +
					"</basic></medium>",
				no_phase_function},
			{"<medium><name>M</name><dermis/></medium>",
				"could not find element 'hemoglobin_fraction'.  (In element 'dermis', around line 1, column 23)"},
			{"<medium><dermis><hemoglobin_fraction>1</hemoglobin_fraction></dermis></medium>",
				"could not find element 'name'.  (In element 'medium', around line 1, column 1)"},
			{"<medium><name>M</name><precedence>high</precedence><dermis><hemoglobin_fraction>1</hemoglobin_fraction></dermis></medium>",
				"Failed to parse integer from 'high'.  (In element 'precedence', around line 1, column 23)"},
		},
		[](const TiXmlElement& e) {
			UID no_uid;
			parseMedium(e, "", no_uid);
			return std::string();
		});
}
