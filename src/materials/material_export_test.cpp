#include "materials/channel_export.h"
#include "c4d/base_shader.h"
#include "host/plugin_globals.h"
#include "materials/material_export_test_helpers.h"
#include "shaders/shader_ids.h"
#include "shaders/shader_plugins.h"

#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "scene/medium.h"
#include "scene/scene_node_medium.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <vector>

using Velorn::Reference;
using Velorn::UID;

namespace
{

template <class T>
const T* as(const void* p)
{
	return static_cast<const T*>(p);
}

const Velorn::Spectrum& constantSpectrum(const Reference<Velorn::WavelengthDependentParam>& param)
{
	return *dynamic_cast<const Velorn::ConstantWavelengthDependentParam&>(*param).spectrum;
}

double constantValue(const Reference<Velorn::WavelengthIndependentParam>& param)
{
	return dynamic_cast<const Velorn::ConstantWavelengthIndependentParam&>(*param).value;
}

} // namespace

// Values are split at blanks, a bad token reads as 0, and fewer than two
// values give the default pair. The reader takes tables that start at 400 nm
// or before and end at 700 nm or after; the other ends move to those bounds.
TEST(TabulatedSpectrum, TokensAndEnds)
{
	const struct
	{
		double start, end;
		const char* text;
		std::vector<double> values;
		double start_m, end_m;
	} cases[] = {
		{380, 720, "0.5", {0.1, 0.1}, 3.8e-7, 7.2e-7},
		{380, 720, "", {0.1, 0.1}, 3.8e-7, 7.2e-7},
		{380, 720, "0.2 x 0.4", {0.2, 0.0, 0.4}, 3.8e-7, 7.2e-7},
		{380, 720, "  1   2 ", {1, 2}, 3.8e-7, 7.2e-7},
		{380, 720, "3e2 4.5q", {300, 0}, 3.8e-7, 7.2e-7},
		{400, 700, "1 2", {1, 2}, 4e-7, 7e-7},
		{450, 800, "1 2", {1, 2}, 4e-7, 8e-7},
		{350, 650, "1 2", {1, 2}, 3.5e-7, 7e-7},
		{450, 650, "1 2", {1, 2}, 4e-7, 7e-7},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(testing::Message() << c.start << " " << c.end << " '" << c.text << "'");
		const Reference<Velorn::Spectrum> spectrum = tabulatedSpectrum(c.start, c.end, String(c.text));
		const auto& regular = dynamic_cast<const Velorn::RegularSpectrum&>(*spectrum);
		EXPECT_EQ(std::vector<double>(regular.values.begin(), regular.values.end()), c.values);
		EXPECT_EQ(regular.num_values, (int32_t)c.values.size());
		EXPECT_EQ(regular.start_wavelength, c.start_m);
		EXPECT_EQ(regular.end_wavelength, c.end_m);
	}
}

// The kinds with links: an empty link takes the driver's material, a
// material met twice is exported once, the null kind renames its node.
TEST_F(MaterialExportTest, LinksFallBackToTheDriversMaterials)
{
	BaseMaterial* coating = newMaterial(MAT_TYPE_COATING, "Coat");
	BaseMaterial* thin = newMaterial(MAT_TYPE_DOUBLE_SIDED_THIN, "Thin");
	BaseMaterial* hole = newMaterial(MAT_TYPE_NULL, "Hole");
	thin->GetDataInstance()->SetLink(MAT_THIN_BACK, coating);

	const UID coat_uid = exportMaterial(coating);
	EXPECT_EQ(materialOf<Velorn::CoatingMaterial>(coat_uid).substrate_material_uid, UID(2));
	const auto& sides = materialOf<Velorn::DoubleSidedThinMaterial>(exportMaterial(thin));
	EXPECT_EQ(sides.front_material_uid, UID(2));
	EXPECT_EQ(sides.back_material_uid, coat_uid);
	EXPECT_EQ(root->getChildren().size(), 2u);

	const UID hole_uid = exportMaterial(hole);
	EXPECT_EQ(node<Velorn::SceneNodeMaterial>(hole_uid).getName(), Velorn::String("nullMat"));
	EXPECT_NO_THROW(materialOf<Velorn::NullMaterial>(hole_uid));
	EXPECT_EQ(settings->material_map.size(), 3u);
}

// A switched-off channel leaves the member at the class's default; the
// Phong albedo goes to one member by the specular mode.
TEST_F(MaterialExportTest, SwitchedOffChannelsKeepTheClassDefault)
{
	BaseMaterial* leaf = newMaterial(MAT_TYPE_DIFFUSE_TRANSMITTER, "Leaf");
	leaf->GetDataInstance()->SetBool(MAT_USE_ALBEDO, false);
	leaf->GetDataInstance()->SetBool(MAT_USE_MEDIUM, false);
	const auto& transmitter = materialOf<Velorn::DiffuseTransmitter>(exportMaterial(leaf));
	const auto& grey = dynamic_cast<const Velorn::RGBSpectrum&>(constantSpectrum(transmitter.albedo));
	EXPECT_EQ(grey.rgb, Velorn::Vec3d(0.5, 0.5, 0.5));
	EXPECT_FALSE(transmitter.internal_medium_uid.valid());

	BaseMaterial* plastic = newMaterial(MAT_TYPE_PHONG, "Plastic");
	const auto& phong = materialOf<Velorn::PhongMaterial>(exportMaterial(plastic));
	EXPECT_TRUE(phong.diffuse_albedo.nonNull());
	EXPECT_TRUE(phong.specular_reflectivity.isNull());
	EXPECT_TRUE(phong.nk_data.empty());
	EXPECT_EQ(phong.ior, 1.6);
	EXPECT_EQ(constantValue(phong.exponent), 1000.0);
}

// Emission: base emission by its mode, the layer through the layer table.
TEST_F(MaterialExportTest, EmissionSpectraAndLayers)
{
	const struct
	{
		int32_t mode;
		const char* spectrum;
	} cases[] = {
		{MAT_SPECTRUM_RGB, "rgb"},
		{MAT_SPECTRUM_BLACKBODY, "blackbody"},
		{MAT_SPECTRUM_PEAK, "peak"},
		{MAT_SPECTRUM_UNIFORM, "uniform"},
		{MAT_SPECTRUM_TABULATED, "tabulated"},
		{4711, "none"},
	};
	int32_t host_layer = 4;
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.spectrum);
		BaseMaterial* lamp = newMaterial(MAT_TYPE_DIFFUSE, c.spectrum);
		BaseContainer& data = *lamp->GetDataInstance();
		data.SetBool(MAT_USE_EMISSION, true);
		data.SetInt32(MAT_EMISSION_MODE, c.mode);
		data.SetInt32(MAT_EMISSION_LAYER, host_layer++);
		const auto& diffuse = materialOf<Velorn::DiffuseMaterial>(exportMaterial(lamp));
		// An unknown mode leaves the base emission out: a parameter without
		// spectrum is no scene the reader takes.
		const Velorn::Spectrum* spectrum = diffuse.base_emission.isNull()
			? nullptr
			: dynamic_cast<const Velorn::ConstantWavelengthDependentParam&>(*diffuse.base_emission).spectrum.getPointer();
		if(c.mode != 4711)
		{
			ASSERT_NE(spectrum, nullptr);
		}
		switch(c.mode)
		{
		case MAT_SPECTRUM_RGB:
			// Colour 1 times scale 0.8, gamma 1.
			EXPECT_EQ(as<Velorn::RGBSpectrum>(spectrum)->rgb, Velorn::Vec3d(0.8, 0.8, 0.8));
			EXPECT_EQ(as<Velorn::RGBSpectrum>(spectrum)->gamma, 1.0);
			break;
		case MAT_SPECTRUM_BLACKBODY:
			EXPECT_EQ(as<Velorn::BlackBodySpectrum>(spectrum)->temperature, 6500.0);
			break;
		case MAT_SPECTRUM_PEAK:
			// Min and width stay in the parameter's unit.
			EXPECT_EQ(as<Velorn::PeakSpectrum>(spectrum)->peak_min, 100.0);
			EXPECT_EQ(as<Velorn::PeakSpectrum>(spectrum)->peak_width, 600.0);
			break;
		case MAT_SPECTRUM_UNIFORM: EXPECT_EQ(as<Velorn::UniformSpectrum>(spectrum)->value, 1.0); break;
		case MAT_SPECTRUM_TABULATED:
			EXPECT_EQ(as<Velorn::RegularSpectrum>(spectrum)->start_wavelength, 4e-7);
			EXPECT_EQ(as<Velorn::RegularSpectrum>(spectrum)->num_values, 2);
			break;
		default: EXPECT_TRUE(diffuse.base_emission.isNull()); break;
		}
		// Each new host layer takes the next renderer layer.
		EXPECT_EQ(diffuse.layer, (unsigned)(host_layer - 5));
		EXPECT_TRUE(diffuse.emission.isNull());
	}
	EXPECT_EQ(settings->layers.size(), 6u);
}

// The medium source link, also in a loop. (The bodies by kind are held by
// the golden media scene.)
TEST_F(MaterialExportTest, MediaByKindAndSource)
{
	BaseMaterial* glass = newMaterial(MAT_TYPE_SPECULAR, "Glass");
	BaseMaterial* frost = newMaterial(MAT_TYPE_GLOSSY_TRANSPARENT, "Frost");
	glass->GetDataInstance()->SetLink(MAT_MEDIUM_SOURCE, frost);
	frost->GetDataInstance()->SetLink(MAT_MEDIUM_SOURCE, glass);
	BaseContainer& frost_data = *frost->GetDataInstance();
	frost_data.SetInt32(MAT_ABSORPTION_MODE, MAT_SPECTRUM_BLACKBODY);
	frost_data.SetFloat(MAT_ABSORPTION_BLACKBODY_TEMPERATURE, 6500);
	frost_data.SetFloat(MAT_ABSORPTION_BLACKBODY_GAIN, 1);

	// Glass takes Frost's medium; Frost's own source leads back to Glass,
	// which the walk has met, so Frost's medium is its own.
	const auto& specular = materialOf<Velorn::SpecularMaterial>(exportMaterial(glass));
	const auto& medium = node<Velorn::SceneNodeMedium>(specular.internal_medium_uid);
	EXPECT_EQ(medium.getName(), Velorn::String("FrostMed"));
	const auto& basic = dynamic_cast<const Velorn::BasicMedium&>(*medium.medium);
	const auto& absorption = dynamic_cast<const Velorn::ConstantVolumeParam&>(*basic.absorption_coefficient);
	const auto& blackbody = dynamic_cast<const Velorn::BlackBodySpectrum&>(*absorption.spectrum);
	EXPECT_EQ(blackbody.temperature, 6500.0);
	EXPECT_EQ(blackbody.gain, 1.0);
	EXPECT_EQ(basic.precedence, 10);
	EXPECT_EQ(basic.ior, 1.6);
	// Frost itself then finds its medium in the map.
	EXPECT_EQ(materialOf<Velorn::GlossyTransparent>(exportMaterial(frost)).internal_medium_uid,
		specular.internal_medium_uid);
}

// Clay replaces a kind by the clay look. (Blends and kept materials keep
// theirs in the golden clay scene.)
TEST_F(MaterialExportTest, ClayLook)
{
	settings->clay_render = 1;
	const auto& clay = materialOf<Velorn::OrenNayarMaterial>(exportMaterial(newMaterial(MAT_TYPE_PHONG, "Metal")));
	const auto& look = dynamic_cast<const Velorn::RGBSpectrum&>(constantSpectrum(clay.albedo));
	EXPECT_EQ(look.rgb, Velorn::Vec3d(0.71f, 0.62f, 0.53f));
	EXPECT_EQ(look.gamma, 2.2);
	EXPECT_EQ(constantValue(clay.sigma), 0.3);
}

// A host material goes through a temporary plug-in material: the map keeps
// the host material, and a second use exports nothing new.
TEST_F(MaterialExportTest, ForeignMaterialIsConvertedOnce)
{
	BaseMaterial* plastic = BaseMaterial::Alloc(Mmaterial);
	plastic->SetName(String("Plastic"));
	doc->InsertMaterial(plastic, nullptr);
	plastic->GetDataInstance()->SetVector(MATERIAL_COLOR_COLOR, Vector(0.5, 0.25, 1));

	const UID uid = exportMaterial(plastic);
	ASSERT_TRUE(uid.valid());
	EXPECT_EQ(node<Velorn::SceneNodeMaterial>(uid).getName(), Velorn::String("Plastic"));
	EXPECT_EQ(settings->material_map.size(), 1u);
	EXPECT_EQ(exportMaterial(plastic), uid);
	EXPECT_EQ(root->getChildren().size(), 1u);
}

// The background leaves out the backface switch and adds no node, and only
// plug-in materials give one. (Its body is held by the golden environment
// scene.)
TEST_F(MaterialExportTest, BackgroundMaterial)
{
	BaseMaterial* sky = newMaterial(MAT_TYPE_DIFFUSE, "Sky");
	sky->GetDataInstance()->SetBool(MAT_USE_EMISSION, true);
	sky->GetDataInstance()->SetBool(MAT_BACKFACE_EMIT, true);
	const Reference<Velorn::Material> background = exportBackgroundMaterial(sky, *root, *settings);
	EXPECT_FALSE(dynamic_cast<const Velorn::DiffuseMaterial&>(*background).backface_emit);
	EXPECT_TRUE(root->getChildren().empty());

	BaseMaterial* plain = BaseMaterial::Alloc(Mmaterial);
	doc->InsertMaterial(plain, nullptr);
	EXPECT_TRUE(exportBackgroundMaterial(plain, *root, *settings).isNull());
}

// Bitmap file names: presets copied beside the textures, preview images
// beside the plug-in, images beside the document, anything else as given.
TEST_F(MaterialExportTest, TextureNamesResolve)
{
	VelornTest::TempDir files;
	Velorn::FileUtils::createDirsForPath(files.file("plugin/presets/lib"));
	Velorn::FileUtils::createDirsForPath(files.file("plugin/res/materialpreview"));
	Velorn::FileUtils::createDirsForPath(files.file("textures"));
	Velorn::FileUtils::createDirsForPath(files.file("document"));
	VelornTest::writeFile(files.file("plugin/presets/lib/wood.jpg"), "wood");
	VelornTest::writeFile(files.file("plugin/res/materialpreview/check.png"), "check");
	VelornTest::writeFile(files.file("document/doc.png"), "doc");
	Filename plugin(String(files.file("plugin")));
	Filename* const saved_plugin_path = plugin_path;
	plugin_path = &plugin;
	settings->textures_dir = Filename(String(files.file("textures")));
	doc->SetDocumentPath(Filename(String(files.file("document"))));

	const struct
	{
		const char* name;
		int32_t preview;
		std::string resolved;
		size_t recorded;
	} cases[] = {
		{"preset://lib/wood.jpg", 0, files.file("textures/preset_lib_wood.jpg"), 1},
		// Copied already: not copied or recorded again.
		{"preset://lib/wood.jpg", 0, files.file("textures/preset_lib_wood.jpg"), 1},
		{"preset://lib\\gone.jpg", 0, files.file("textures/preset_lib_gone.jpg"), 1},
		{"check.png", 1, files.file("plugin/res/materialpreview/check.png"), 1},
		{"check.png", 0, "check.png", 1},
		{"doc.png", 1, files.file("document/doc.png"), 1},
		{"C:\\maps\\doc.png", 0, "C:\\maps\\doc.png", 1},
		{"missing.png", 0, "missing.png", 1},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(std::string(c.name) + (c.preview ? " (preview)" : ""));
		settings->preview = c.preview;
		EXPECT_EQ(resolveTextureName(String(c.name), *settings).GetStdString(), c.resolved);
		EXPECT_EQ(temp_files.size(), c.recorded);
	}
	EXPECT_EQ(VelornTest::readFile(files.file("textures/preset_lib_wood.jpg")), "wood");
	EXPECT_EQ(temp_files[0].GetString().GetStdString(), files.file("textures/preset_lib_wood.jpg"));
	plugin_path = saved_plugin_path;
}

// The plug-in's own shaders become shader parameters through the shader
// translation, which may append the shader's images to the material's
// textures. (Host shaders that are no bitmap are baked: channel_bake_test.)
TEST_F(MaterialExportTest, OwnShadersTranslate)
{
	ASSERT_TRUE(RegisterVslShader());
	BaseMaterial* painted = newMaterial(MAT_TYPE_DIFFUSE, "Painted");
	BaseShader* text = BaseShader::Alloc(ID_VSL_SHADER);
	ASSERT_NE(text, nullptr);
	text->GetDataInstance()->SetString(VSLSHADER_TEXT, String("def eval(vec3 pos) vec3: vec3(1.0)"));
	text->GetDataInstance()->SetFilename(VSLSHADER_TEXTURE_1, Filename("grain.png"));
	painted->InsertShader(text);
	painted->GetDataInstance()->SetLink(MAT_ALBEDO_LINK, text);
	const auto& diffuse = materialOf<Velorn::DiffuseMaterial>(exportMaterial(painted));
	const auto* shaded = dynamic_cast<const Velorn::ShaderWavelengthDependentParam*>(diffuse.albedo.getPointer());
	ASSERT_NE(shaded, nullptr);
	EXPECT_TRUE(shaded->shader_info.nonNull());
	ASSERT_EQ(diffuse.textures.size(), 1u);
	EXPECT_EQ(diffuse.textures[0].path, Velorn::String("grain.png"));
}
