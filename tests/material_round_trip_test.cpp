// Material, medium and value files read back and written again: the golden
// files' bytes come back, except where a round trip loses something, and
// those losses are pinned down here.

#include "reader/material_parser.h"
#include "reader/reader_test_helpers.h"
#include "reader/scene_parser.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_other.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using namespace Velorn;
using namespace Velorn::MaterialParser;
using VelornTest::goldenFile;
using VelornTest::replacedAll;
using VelornTest::XMLText;

namespace
{

// The nodes that the _names files refer to by name.
ParseNames namedTargets()
{
	ParseNames names;
	for(const char* name : {"Red", "Blue  Velvet", "Base", "Front"})
		names.material_names.insert(name, VelornTest::materialNode(new DiffuseMaterial(), name, 100));
	for(const char* name : {"Glass inside", "Water"})
		names.medium_names.insert(name, VelornTest::mediumNode(name, 101));
	return names;
}

// A node that a material refers to by UID, put into the tree so that the
// reference binds before writing.
struct Target
{
	uint32_t uid;
	bool medium;
};

// The material or medium of the text read into a node and written; with
// targets, the node is first bound in a tree that holds them.
std::string nodeRoundTrip(const std::string& text, bool write_uids, const std::vector<Target>& targets = {})
{
	XMLText doc(text);
	UID uid;
	VelornTest::SceneBuilder scene;
	Reference<SceneNode> node;
	if(std::string(doc.root().Value()) == "medium")
		node = new SceneNodeMedium(parseMedium(doc.root(), "", uid));
	else
		node = new SceneNodeMaterial(parseMaterial(doc.root(), "", uid, namedTargets()));
	node->uid = uid;
	scene.root->addChildNode(node);
	for(const Target& target : targets)
		if(target.medium)
			scene.addMedium("Stand-in medium", target.uid);
		else
			scene.add(new DiffuseMaterial(), "Stand-in", target.uid);
	if(!targets.empty())
		scene.walk(VisitOperation::Bind);
	return VelornTest::textOf(*node, write_uids);
}

// The writer does not check texture indices, and some golden materials use
// indices without textures, which the reader refuses. These get count
// textures at the start of their type element, as the writer puts them.
std::string withTextures(const std::string& text, unsigned count)
{
	const std::string texture =
		"\t\t<texture>\n\t\t\t<path>t.png</path>\n\t\t\t<a>0</a>\n\t\t\t<b>1</b>\n\t\t\t<c>0</c>\n"
		"\t\t\t<uv_set_index>0</uv_set_index>\n\t\t\t<exponent>2.2</exponent>\n\t\t\t<smooth>false</smooth>\n"
		"\t\t</texture>\n";
	// The type element opens on the line after the name.
	const size_t type_line = text.find('\n', text.find("</name>\n") + 8) + 1;
	std::string textures;
	for(unsigned i = 0; i < count; ++i)
		textures += texture;
	return std::string(text).insert(type_line, textures);
}

} // namespace

TEST(MaterialRoundTrip, MaterialAndMediumFilesComeBackByteForByte)
{
	const Target medium{3, true};
	const struct
	{
		const char* golden;
		bool write_uids;
		std::vector<Target> targets = {};
		unsigned textures = 0;
	} cases[] = {
		{"material_diffuse_default.xml", true},
		{"material_diffuse_full.xml", true},
		{"material_diffuse_transmitter.xml", true, {medium}},
		{"material_diffuse_transmitter_names.xml", false},
		{"material_oren_nayar.xml", true, {}, 2},
		{"material_phong.xml", true},
		{"material_phong_default.xml", true},
		{"material_glass_smooth.xml", true, {medium}},
		{"material_glass_smooth_names.xml", false},
		{"material_glossy_transparent.xml", true, {medium}},
		{"material_glossy_transparent_names.xml", false, {}, 1},
		{"material_null.xml", true},
		{"material_exit_portal.xml", true},
		{"material_blend.xml", true, {{2, false}, {3, false}}},
		{"material_blend_names.xml", false, {}, 1},
		{"material_coating.xml", true, {{2, false}}},
		// Unbound targets of these are written by their stored UIDs.
		{"material_coating_unbound.xml", true},
		{"material_double_sided_thin.xml", true},
		{"material_sum.xml", true, {}, 2},
		{"material_coating_names.xml", false},
		{"material_sum_names.xml", false, {}, 2},
		{"material_sunsky.xml", true},
		{"material_sunsky_default.xml", true},
		{"material_plugin.xml", true},
		{"medium_basic.xml", true},
		{"medium_basic_scattering.xml", false},
		{"medium_dermis.xml", true},
		{"medium_epidermis.xml", true},
		{"medium_atmosphere.xml", true},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.golden);
		const std::string text = withTextures(goldenFile(c.golden), c.textures);
		EXPECT_EQ(nodeRoundTrip(text, c.write_uids, c.targets), text);
	}
}

// Materials the writer can make and the reader refuses.
TEST(MaterialRoundTrip, MaterialsThatCannotBeReadBack)
{
	const struct
	{
		const char* golden;
		bool write_uids;
		const char* message;
	} cases[] = {
		// An unbound blend is written without its targets, which it needs.
		{"material_blend_unbound.xml", true,
			"could not find element 'a_name'.  (In element 'blend', around line 4, column 5)"},
		// A texture index written without the texture.
		{"material_oren_nayar.xml", true,
			"Texture index '1' is out of bounds: this material has 0 textures.  (In element 'texture', around line 17, "
			"column 13)"},
		// With names, an unbound side is left out, and a side is required.
		{"material_double_sided_thin_names.xml", false,
			"could not find element 'back_material_name'.  (In element 'double_sided_thin', around line 3, column 5)"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.golden);
		EXPECT_EQ(VelornTest::failureOf<SceneParserExcep>([&] { nodeRoundTrip(goldenFile(c.golden), c.write_uids); }),
			c.message);
	}
}

TEST(MaterialRoundTrip, MaterialsThatComeBackChanged)
{
	const std::string full = goldenFile("material_diffuse_full.xml");
	const std::string exponent = "\t\t\t<exponent>2.2</exponent>\n";
	const std::string plugin = goldenFile("material_plugin.xml");
	const struct
	{
		const char* what;
		std::string text, expected;
	} cases[] = {
		// A texture without an exponent reads as linear.
		{"texture without exponent", replacedAll(full, exponent, ""),
			replacedAll(full, exponent, "\t\t\t<exponent>1</exponent>\n")},
		// The plain constant of a displacement reads as the three-line one.
		{"displacement constant on one line",
			replacedAll(full, "\t\t\t<constant>\n\t\t\t\t0.001\n\t\t\t</constant>\n", "\t\t\t<constant>0.001</constant>\n"),
			full},
		// The parameter lists of a plugin material are read but never written.
		{"plugin parameters",
			replacedAll(plugin, "\t</plugin>\n",
				"\t\t<param>\n\t\t\t<name>sheen</name>\n\t\t\t<wavelength_dependent>\n\t\t\t\t<constant>\n"
				"\t\t\t\t\t<uniform>\n\t\t\t\t\t\t<value>1</value>\n\t\t\t\t\t</uniform>\n\t\t\t\t</constant>\n"
				"\t\t\t</wavelength_dependent>\n\t\t</param>\n\t</plugin>\n"),
			plugin},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		EXPECT_EQ(nodeRoundTrip(c.text, true), c.expected);
	}
}

// The writer makes one scatter_uids element for each scatter, and the reader
// takes the first one only.
TEST(MaterialRoundTrip, ScattersAfterTheFirstAreLost)
{
	const std::string scatter = goldenFile("material_scatter.xml");
	XMLText doc(scatter);
	SceneParser parser;
	VelornTest::SceneBuilder scene;
	const Reference<SceneNode> node = parser.parseElement(doc.root(), "");
	ASSERT_TRUE(node.nonNull());
	scene.root->addChildNode(node);
	VelornTest::addScatter(*scene.root, 30, 40);
	VelornTest::addScatter(*scene.root, 31, 40);
	scene.walk(VisitOperation::Bind);
	EXPECT_EQ(VelornTest::textOf(*node, true, 1),
		replacedAll(scatter, "\t\t<scatter_uids>\n\t\t\t<uid>31</uid>\n\t\t</scatter_uids>\n", ""));
}

namespace
{

// The value read from the text wrapped in an element of its own, written
// again at depth.
typedef std::function<void(const TiXmlElement& holder, OStream& out, WriteContext& context)> ValueRoundTrip;

std::string valueRoundTrip(const std::string& text, const ValueRoundTrip& read_and_write)
{
	XMLText doc("<holder>" + text + "</holder>");
	BufferOStream out;
	WriteContext context;
	read_and_write(doc.root(), out, context);
	return out.str();
}

ValueRoundTrip spectrum(unsigned depth)
{
	return [depth](const TiXmlElement& holder, OStream& out, WriteContext&) { parseSpectrum(holder)->writeXML(out, depth); };
}

void table(const TiXmlElement& holder, OStream& out, WriteContext&) { parseTabulatedSpectralData(holder)->writeXML(out, 0); }

void texture(const TiXmlElement& holder, OStream& out, WriteContext& context)
{
	parseTexture(*holder.FirstChildElement("texture"), "").writeXML(out, 0, context);
}

// Each element of a file of parameters in a holder of its own, as a channel
// element holds it, written at depth 0.
template <class Param>
ValueRoundTrip params(std::function<Reference<Param>(const TiXmlElement&)> read)
{
	return [read](const TiXmlElement& file, OStream& out, WriteContext& context) {
		for(const TiXmlElement* form = file.FirstChildElement(); form; form = form->NextSiblingElement())
		{
			TiXmlElement holder("channel");
			holder.InsertEndChild(*form);
			read(holder)->writeXML(out, 0, context);
		}
	};
}

} // namespace

// Value files come back byte for byte, but for those the writer can make and
// the reader refuses.
TEST(MaterialRoundTrip, ValueFiles)
{
	const struct
	{
		const char* golden;
		ValueRoundTrip read_and_write;
		const char* refusal = nullptr;
	} cases[] = {
		{"wavelength_blackbody.xml", spectrum(0)},
		{"wavelength_peak.xml", spectrum(0)},
		{"wavelength_rgb.xml", spectrum(1)},
		{"wavelength_regular.xml", spectrum(0)},
		{"wavelength_uniform.xml", spectrum(0)},
		{"tabulated_data.xml", table},
		{"texture_plain.xml", texture},
		{"texture_uv.xml", texture},
		{"texture_spherical.xml", texture},
		{"texture_spherical_matrix.xml", texture},
		{"texture_spherical_env_axis.xml", texture},
		{"shader_info.xml", [](const TiXmlElement& holder, OStream& out,
								WriteContext& context) { parseShaderInfo(holder, "")->writeXML(out, 0, context); }},
		{"params_wavelength_independent.xml",
			params<WavelengthIndependentParam>([](const TiXmlElement& e) { return parseWavelengthIndependentParam(e, "", 1); })},
		{"params_displacement.xml",
			params<DisplacementParam>([](const TiXmlElement& e) { return parseDisplacementParam(e, "", 3); })},
		{"params_volume.xml", params<VolumeParam>([](const TiXmlElement& e) { return parseVolumeParam(e, ""); })},
		{"params_vec3.xml", params<Vec3Param>([](const TiXmlElement& e) { return parseVec3Param(e, "", 2); })},
		// A regular spectrum without values.
		{"wavelength_regular_empty.xml", spectrum(0), "num_values must be >= 2."},
		// A table whose last row is short.
		{"tabulated_data_partial_row.xml", table, "Reached end of string while parsing data."},
		// A constant without a spectrum is written as an empty constant element.
		{"params_wavelength_dependent.xml",
			params<WavelengthDependentParam>([](const TiXmlElement& e) { return parseWavelengthDependentParam(e, "", 4); }),
			"Failed to find child for element 'constant' - Child should be one of 'rgb', 'blackbody', 'peak', 'uniform', "
			"'regular_tabulated'.  (In element 'constant', around line 6, column 1)"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.golden);
		if(c.refusal)
		{
			EXPECT_EQ(VelornTest::failureOf<SceneParserExcep>([&] { valueRoundTrip(goldenFile(c.golden), c.read_and_write); }),
				c.refusal);
		}
		else
			VelornTest::expectMatchesGolden(valueRoundTrip(goldenFile(c.golden), c.read_and_write), c.golden);
	}
}
