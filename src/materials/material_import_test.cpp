#include "materials/material_import.h"

#include "c4d/base_shader.h"
#include "c4d/console.h"
#include "c4d/dialog_script.h"
#include "c4d/events.h"
#include "c4d/host_clock.h"
#include "c4d/plugin_registry.h"
#include "export/export_settings.h"
#include "host/plugin_globals.h"
#include "materials/archive_test_helpers.h"
#include "materials/material_export.h"
#include "materials/material_test_helpers.h"
#include "materials/nk_table.h"
#include "shaders/shader_ids.h"
#include "shaders/shader_plugins.h"

#include "scene/materials_basic.h"
#include "scene/materials_other.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_root.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/test_files.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using Velorn::Reference;

namespace
{

// The start and end of a material file of the renderer.
const std::string head = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<scenedata>\n";
const std::string tail = "</scenedata>\n";

std::string rgb(const char* values, const char* gamma = "1")
{
	return std::string("<constant><rgb><rgb>") + values + "</rgb><gamma>" + gamma + "</gamma></rgb></constant>";
}

// The import of files into the fixture's document, with the free-text
// shader registered, a plug-in folder in a temporary directory and a fixed
// timer.
class MaterialImportTest : public MaterialTest
{
protected:
	void SetUp() override
	{
		MaterialTest::SetUp();
		ASSERT_TRUE(RegisterVslShader());
		HostConsole::get().clear();
		DialogScript::get().clear();
		HostClock::get().fixTime(4711);
		saved_plugin_path = plugin_path;
		plugin_path = new Filename(String(plugin_dir.path()));
	}

	void TearDown() override
	{
		delete plugin_path;
		plugin_path = saved_plugin_path;
		HostClock::get().release();
		HostConsole::get().clear();
		MaterialTest::TearDown();
	}

	std::string writeMaterialFile(const std::string& name, const std::string& body)
	{
		const std::string path = files.file(name);
		VelornTest::writeFile(path, head + body + tail);
		return path;
	}

	void importInto(BaseDocument* target, const std::string& path)
	{
		MaterialImporter importer(*target);
		importer.importFile(Filename(String(path)));
	}

	BaseMaterial* material(BaseDocument* in, const char* name) const
	{
		for(BaseMaterial* mat = in->GetFirstMaterial(); mat; mat = mat->GetNext())
			if(mat->GetName() == String(name))
				return mat;
		return nullptr;
	}

	int materialCount(BaseDocument* in) const
	{
		int count = 0;
		for(BaseMaterial* mat = in->GetFirstMaterial(); mat; mat = mat->GetNext())
			++count;
		return count;
	}

	static std::vector<std::string> lines(HostConsole::Kind kind)
	{
		std::vector<std::string> out;
		for(const String& text : HostConsole::get().texts(kind))
			out.push_back(text.GetStdString());
		return out;
	}

	std::string materialsFolder() const { return plugin_dir.file("materials"); }

	VelornTest::TempDir files;
	VelornTest::TempDir plugin_dir;
	Filename* saved_plugin_path = nullptr;
};

// Colours that the scene holds only as their product with a scale.
const std::pair<int32_t, int32_t> kScaledColours[] = {{MAT_ALBEDO_COLOUR, MAT_ALBEDO_SCALE},
	{MAT_EMISSION_RGB_COLOUR, MAT_EMISSION_RGB_SCALE}, {MAT_ABSORPTION_RGB_COLOUR, MAT_ABSORPTION_RGB_SCALE},
	{MAT_ABSORPTION_LAYER_COLOUR, MAT_ABSORPTION_LAYER_SCALE},
	{MAT_CH_COAT_ABSORPTION + MAT_CH_COLOUR, MAT_CH_COAT_ABSORPTION + MAT_CH_SCALE}};

// Parameter id of the import as in the source: a scaled colour by its
// product, a link by the linked material's name, a scale through its colour.
void expectImported(const BaseContainer& want, BaseDocument* source, const BaseContainer& got, BaseDocument* imported,
	int32_t id)
{
	SCOPED_TRACE(id);
	for(const auto& [colour, scale] : kScaledColours)
	{
		if(id == colour)
			return expectNearVector(got.GetVector(id) * got.GetFloat(scale), want.GetVector(id) * want.GetFloat(scale));
		if(id == scale)
			return;
	}
	const GeData& w = want.GetData(id);
	const GeData& g = got.GetData(id);
	switch(w.GetType())
	{
	case DA_REAL: EXPECT_NEAR(g.GetFloat(), w.GetFloat(), 1e-9 * std::max(1.0, std::fabs(w.GetFloat()))); break;
	case DA_VECTOR: expectNearVector(g.GetVector(), w.GetVector()); break;
	case DA_LONG: EXPECT_EQ(g.GetInt32(), w.GetInt32()); break;
	case DA_STRING: EXPECT_EQ(g.GetString().GetStdString(), w.GetString().GetStdString()); break;
	// Unset in the source: the import leaves it unset too.
	case DA_NIL: EXPECT_EQ(g.GetType(), DA_NIL); break;
	default:
	{
		BaseList2D* linked = got.GetLink(id, imported);
		ASSERT_NE(linked, nullptr);
		EXPECT_EQ(linked->GetName(), want.GetLink(id, source)->GetName());
		EXPECT_EQ(linked->GetDocument(), imported);
	}
	}
}

} // namespace

// Each kind exported from a document, written as a scene of material nodes
// and imported into a fresh document comes back with the parameters that
// its export reads: those the case sets and those it names besides. Left
// out, as the scene cannot hold them apart: the Phong kind's fresnel scale,
// backface emission and the shadow catcher (the import has no filler for
// them), and the phase function's gamma (the import sets 1.0).
TEST_F(MaterialImportTest, EachKindComesBackWithTheParametersItWasExportedFrom)
{
	const std::string texture = files.file("bumps.png");
	VelornTest::writeFile(texture, "not decoded by the import");

	BaseMaterial* first = newMaterial(MAT_TYPE_DIFFUSE, "First");
	first->GetDataInstance()->SetVector(MAT_ALBEDO_COLOUR, Vector(0.1, 0.2, 0.3));
	BaseMaterial* second = newMaterial(MAT_TYPE_OREN_NAYAR, "Second");
	second->GetDataInstance()->SetFloat(MAT_SIGMA_VALUE, 0.45);

	const int32_t ABSORPTION = MAT_CH_COAT_ABSORPTION, TRANSMITTANCE = MAT_CH_TRANSMITTANCE;
	const struct
	{
		const char* name;
		int32_t kind;
		Values set;
		std::vector<int32_t> also;
	} cases[] = {
		{"Diffuse", MAT_TYPE_DIFFUSE,
			{{MAT_ALBEDO_COLOUR, Vector(0.5, 0.25, 1.0)}, {MAT_ALBEDO_SCALE, 0.8}, {MAT_ALBEDO_GAMMA, 1.8},
				{MAT_USE_EMISSION, 1}, {MAT_EMISSION_MODE, MAT_SPECTRUM_RGB},
				{MAT_EMISSION_RGB_COLOUR, Vector(1.0, 0.5, 0.25)}, {MAT_EMISSION_RGB_SCALE, 4.0},
				{MAT_EMISSION_RGB_GAMMA, 2.0}, {MAT_USE_BUMP, 1}, {MAT_BUMP_EXPONENT, 1.5}, {MAT_BUMP_A, 0.1},
				{MAT_BUMP_B, 0.02}, {MAT_BUMP_C, 0.3}, {MAT_BUMP_SMOOTH, 1}},
			{MAT_USE_ALBEDO, MAT_EMISSION_LAYER, MAT_USE_DISPLACEMENT, MAT_USE_NORMAL_MAP}},
		{"OrenNayar", MAT_TYPE_OREN_NAYAR,
			{{MAT_SIGMA_VALUE, 0.35}, {MAT_ALBEDO_COLOUR, Vector(0.2, 0.4, 0.6)}, {MAT_USE_EMISSION, 1},
				{MAT_EMISSION_MODE, MAT_SPECTRUM_BLACKBODY}, {MAT_EMISSION_BLACKBODY_TEMPERATURE, 3200.0},
				{MAT_EMISSION_BLACKBODY_GAIN, 2.5}},
			{MAT_USE_SIGMA, MAT_USE_ALBEDO, MAT_ALBEDO_GAMMA}},
		{"Phong", MAT_TYPE_PHONG,
			{{MAT_PHONG_SPECULAR_MODE, 1}, {MAT_EXPONENT_VALUE, 250.0}, {MAT_PHONG_USE_NK, 1},
				{MAT_PHONG_NK_FILE, FindNkFile(String("Au.nk"))}, {MAT_PHONG_IOR, 1.33},
				{MAT_ALBEDO_COLOUR, Vector(0.9, 0.8, 0.1)}},
			{MAT_USE_EXPONENT, MAT_ALBEDO_GAMMA}},
		{"Transmitter", MAT_TYPE_DIFFUSE_TRANSMITTER,
			{{MAT_ALBEDO_COLOUR, Vector(0.3, 0.3, 0.9)}, {MAT_USE_EMISSION, 1},
				{MAT_EMISSION_MODE, MAT_SPECTRUM_UNIFORM}, {MAT_EMISSION_UNIFORM, 7.5}},
			{MAT_USE_ALBEDO, MAT_ALBEDO_GAMMA}},
		{"Specular", MAT_TYPE_SPECULAR,
			{{MAT_TRANSPARENT, 0}, {MAT_PRIVATE_DATA, "coated"}, {MAT_MEDIUM_PRECEDENCE, 7}, {MAT_MEDIUM_IOR, 1.52},
				{MAT_MEDIUM_CAUCHY_B, 0.004}, {MAT_ABSORPTION_MODE, MAT_SPECTRUM_RGB},
				{MAT_ABSORPTION_RGB_COLOUR, Vector(0.25, 0.5, 0.75)}, {MAT_ABSORPTION_RGB_GAMMA, 1.4},
				{MAT_MEDIUM_SSS, 1}, {MAT_SCATTERING_MODE, MAT_SPECTRUM_UNIFORM}, {MAT_SCATTERING_UNIFORM, 0.3},
				{MAT_PHASE_KIND, MAT_PHASE_HENYEY_GREENSTEIN}, {MAT_PHASE_G, Vector(0.1, 0.2, 0.3)},
				{MAT_USE_ABSORPTION_LAYER, 1}, {MAT_ABSORPTION_LAYER_COLOUR, Vector(0.6, 0.7, 0.8)},
				{MAT_USE_EMISSION, 1}, {MAT_EMISSION_MODE, MAT_SPECTRUM_TABULATED}, {MAT_EMISSION_TABLE_START, 380.0},
				{MAT_EMISSION_TABLE_END, 720.0}, {MAT_EMISSION_TABLE_VALUES, "0.1 0.25 0.3"}},
			{MAT_MEDIUM_KIND, MAT_ABSORPTION_LAYER_GAMMA}},
		{"Glossy", MAT_TYPE_GLOSSY_TRANSPARENT,
			{{MAT_EXPONENT_VALUE, 80.0}, {MAT_MEDIUM_KIND, MAT_MEDIUM_DERMIS}, {MAT_DERMIS_HEMOGLOBIN, 0.12},
				{MAT_USE_ABSORPTION_LAYER, 1}, {MAT_ABSORPTION_LAYER_COLOUR, Vector(0.5, 0.5, 0.1)},
				{MAT_USE_EMISSION, 1}, {MAT_EMISSION_MODE, MAT_SPECTRUM_PEAK}, {MAT_EMISSION_PEAK_MIN, 450.0},
				{MAT_EMISSION_PEAK_WIDTH, 120.0}, {MAT_EMISSION_PEAK_BASE, 0.5}, {MAT_EMISSION_PEAK_VALUE, 3.0}},
			{MAT_USE_EXPONENT}},
		{"Blend", MAT_TYPE_BLEND,
			{{MAT_BLEND_A, first}, {MAT_BLEND_B, second}, {MAT_ALPHA_VALUE, 0.3}, {MAT_BLEND_STEP, 1}},
			{MAT_USE_ALPHA}},
		{"Null", MAT_TYPE_NULL, {}, {}},
		{"Coating", MAT_TYPE_COATING,
			{{MAT_COAT_SUBSTRATE, second}, {MAT_COAT_IOR, 1.7}, {MAT_COAT_INTERFERENCE, 1},
				{ABSORPTION + MAT_CH_MODE, MAT_SPECTRUM_RGB}, {ABSORPTION + MAT_CH_COLOUR, Vector(0.5, 1.0, 0.25)},
				{ABSORPTION + MAT_CH_SCALE, 3.0}, {ABSORPTION + MAT_CH_GAMMA, 1.2},
				{MAT_CH_FRESNEL_SCALE + MAT_CH_VALUE, 0.9}, {MAT_CH_ROUGHNESS + MAT_CH_VALUE, 0.15},
				{MAT_CH_COAT_THICKNESS + MAT_CH_VALUE, 250.0}},
			{MAT_USE_COAT_ABSORPTION, MAT_USE_FRESNEL_SCALE, MAT_USE_ROUGHNESS, MAT_USE_COAT_THICKNESS}},
		{"Thin", MAT_TYPE_DOUBLE_SIDED_THIN,
			{{MAT_THIN_FRONT, first}, {MAT_THIN_BACK, second}, {MAT_THIN_IOR, 1.3},
				{TRANSMITTANCE + MAT_CH_MODE, MAT_SPECTRUM_BLACKBODY}, {TRANSMITTANCE + MAT_CH_TEMPERATURE, 5000.0},
				{TRANSMITTANCE + MAT_CH_GAIN, 2.0}, {MAT_CH_FRESNEL_SCALE + MAT_CH_VALUE, 0.8},
				{MAT_CH_BACK_FRESNEL_SCALE + MAT_CH_VALUE, 0.7}, {MAT_CH_ROUGHNESS + MAT_CH_VALUE, 0.2},
				{MAT_CH_BACK_ROUGHNESS + MAT_CH_VALUE, 0.35}, {MAT_CH_R_F + MAT_CH_VALUE, 0.6}},
			{MAT_USE_TRANSMITTANCE, MAT_USE_R_F, MAT_USE_BACK_ROUGHNESS}},
	};
	for(const auto& c : cases)
	{
		BaseMaterial* source = newMaterial(c.kind, c.name);
		for(const auto& [id, value] : c.set)
			source->GetDataInstance()->SetData(id, value);
	}
	// Binding the scene needs the transmitter's medium, whose switch the
	// import does not set.
	material(doc, "Transmitter")->GetDataInstance()->SetBool(MAT_USE_MEDIUM, true);
	BaseMaterial* diffuse = material(doc, "Diffuse");
	BaseShader* bitmap = BaseShader::Alloc(Xbitmap);
	bitmap->GetDataInstance()->SetFilename(BITMAPSHADER_FILENAME, Filename(String(texture)));
	diffuse->InsertShader(bitmap);
	diffuse->GetDataInstance()->SetLink(MAT_BUMP_LINK, bitmap);

	// The export's stand-ins for an empty link, as the export driver makes
	// them.
	Reference<Velorn::SceneNodeRoot> root = new Velorn::SceneNodeRoot();
	Reference<Velorn::SceneNodeMaterial> null_node = new Velorn::SceneNodeMaterial(new Velorn::NullMaterial());
	null_node->setName("nullMat");
	root->addChildNode(null_node);
	std::vector<Filename> temp_files;
	ExportSettings settings(doc, Filename("scene.vls"), &temp_files, 0, 64, 64, 0, 0, 0, 0);
	settings.null_material = settings.default_material = null_node->uid;
	for(const auto& c : cases)
		ASSERT_TRUE(exportLinkedMaterial(material(doc, c.name), *root, settings).valid()) << c.name;
	const std::string path = files.file("all_kinds.vlm");
	root->finalise(Velorn::String(path));
	root->writeToFile(Velorn::String(path), false, nullptr);

	BaseDocument* imported = BaseDocument::Alloc();
	importInto(imported, path);
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		BaseMaterial* target = material(imported, c.name);
		if(c.kind == MAT_TYPE_NULL)
		{
			EXPECT_EQ(target, nullptr);
			continue;
		}
		ASSERT_NE(target, nullptr);
		const BaseContainer& want = *material(doc, c.name)->GetDataInstance();
		const BaseContainer& got = *target->GetDataInstance();
		EXPECT_EQ(got.GetInt32(MAT_TYPE), c.kind);
		for(const auto& [id, value] : c.set)
			expectImported(want, doc, got, imported, id);
		for(int32_t id : c.also)
			expectImported(want, doc, got, imported, id);
	}
	// The bump texture is a bitmap shader of the file, owned by the material.
	BaseList2D* bump = material(imported, "Diffuse")->GetDataInstance()->GetLink(MAT_BUMP_LINK, imported);
	ASSERT_NE(bump, nullptr);
	EXPECT_EQ(bump->GetType(), Xbitmap);
	EXPECT_EQ(bump->GetDataInstance()->GetFilename(BITMAPSHADER_FILENAME).GetString().GetStdString(), texture);
	// The materials that the links name came in once each, under their names;
	// the null material left nothing.
	EXPECT_EQ(materialCount(imported), materialCount(doc) - 1);
	const std::vector<std::string> printed = lines(HostConsole::Kind::Print);
	EXPECT_NE(std::find(printed.begin(), printed.end(), "Loaded texture: " + texture), printed.end());
	EXPECT_TRUE(lines(HostConsole::Kind::Message).empty());
	BaseDocument::Free(imported);
}

TEST_F(MaterialImportTest, SecondImportDuplicatesNothingAndForwardLinksImportFirst)
{
	const std::string path = writeMaterialFile("forward.vlm",
		"<material><uid>1</uid><name>Mix</name><blend><a_mat_uid>2</a_mat_uid><b_mat_uid>3</b_mat_uid>"
		"<blend><constant>0.25</constant></blend><step_blend>true</step_blend></blend></material>\n"
		"<material><uid>2</uid><name>Red</name><diffuse><albedo>" +
			rgb("0.8 0.1 0.1") +
			"</albedo></diffuse></material>\n"
			"<material><uid>3</uid><name>Blue</name><diffuse/></material>\n");

	ResetEventCount();
	MaterialImporter importer(*doc);
	importer.importFile(Filename(String(path)));
	EXPECT_EQ(EventCount(), 1);
	// Red and Blue are imported on the way into Mix, which is finished
	// last; the walk then finds them by name and leaves them.
	std::vector<std::string> order;
	for(BaseMaterial* mat : importer.created())
		order.push_back(mat->GetName().GetStdString());
	EXPECT_EQ(order, (std::vector<std::string>{"Red", "Blue", "Mix"}));
	ASSERT_EQ(materialCount(doc), 3);
	const BaseContainer& mix = *material(doc, "Mix")->GetDataInstance();
	EXPECT_EQ(mix.GetLink(MAT_BLEND_A, doc), material(doc, "Red"));
	EXPECT_EQ(mix.GetLink(MAT_BLEND_B, doc), material(doc, "Blue"));
	expectValues(mix, {{MAT_ALPHA_VALUE, 0.25}, {MAT_BLEND_STEP, 1}});

	MaterialImporter again(*doc);
	again.importFile(Filename(String(path)));
	EXPECT_TRUE(again.created().empty());
	EXPECT_EQ(materialCount(doc), 3);
}

// A cycle of links in a file ends: the second material finds the first by
// its name, and the material's own check refuses the link that closes the
// cycle and a link to itself.
TEST_F(MaterialImportTest, CycleOfLinksEnds)
{
	const std::string path = writeMaterialFile("cycle.vlm",
		"<material><uid>1</uid><name>A</name><blend><a_mat_uid>2</a_mat_uid><b_mat_uid>1</b_mat_uid></blend>"
		"</material>\n"
		"<material><uid>2</uid><name>B</name><coating><substrate_material_uid>1</substrate_material_uid>"
		"</coating></material>\n");
	importInto(doc, path);
	ASSERT_EQ(materialCount(doc), 2);
	BaseMaterial* a = material(doc, "A");
	BaseMaterial* b = material(doc, "B");
	EXPECT_EQ(b->GetDataInstance()->GetLink(MAT_COAT_SUBSTRATE, doc), a);
	EXPECT_EQ(a->GetDataInstance()->GetLink(MAT_BLEND_A, doc), nullptr);
	EXPECT_EQ(a->GetDataInstance()->GetLink(MAT_BLEND_B, doc), nullptr);
	EXPECT_EQ(lines(HostConsole::Kind::Print),
		(std::vector<std::string>{
			"Material \"A\": the link to \"B\" would make the material use itself; it was left empty.",
			"Material \"A\": the link to \"A\" would make the material use itself; it was left empty."}));
}

// A chain of forward links deeper than the import goes ahead of the file's
// order is cut at that depth; the rest come in by their own turn.
TEST_F(MaterialImportTest, LongChainOfLinksIsCut)
{
	std::string body;
	for(int i = 0; i < 300; ++i)
		body += "<material><uid>" + std::to_string(i + 1) + "</uid><name>m" + std::to_string(i) +
			"</name><blend><a_mat_uid>" + std::to_string(i + 2) + "</a_mat_uid><b_mat_uid>301</b_mat_uid></blend>"
			"</material>\n";
	body += "<material><uid>301</uid><name>end</name><diffuse/></material>\n";
	importInto(doc, writeMaterialFile("chain.vlm", body));
	ASSERT_EQ(materialCount(doc), 301);
	EXPECT_EQ(material(doc, "m254")->GetDataInstance()->GetLink(MAT_BLEND_A, doc), material(doc, "m255"));
	EXPECT_EQ(material(doc, "m255")->GetDataInstance()->GetLink(MAT_BLEND_A, doc), nullptr);
	EXPECT_EQ(material(doc, "m256")->GetDataInstance()->GetLink(MAT_BLEND_A, doc), material(doc, "m257"));
	EXPECT_EQ(material(doc, "m299")->GetDataInstance()->GetLink(MAT_BLEND_A, doc), material(doc, "end"));
	EXPECT_EQ(lines(HostConsole::Kind::Print),
		(std::vector<std::string>{
			"Material \"m256\" lies more than 256 links deep; it is imported by its own turn in the file, and the "
			"link to it was left empty.",
			"Material \"end\" lies more than 256 links deep; it is imported by its own turn in the file, and the "
			"link to it was left empty."}));
}

TEST_F(MaterialImportTest, TexturesAreFoundBesideTheFileAndTheirSettingsCopied)
{
	VelornTest::writeFile(files.file("wood.png"), "image");
	const std::string path = writeMaterialFile("textured.vlm",
		"<material><name>Wood</name><phong>"
		"<texture><path>wood.png</path><a>0.5</a><b>2</b><c>0.25</c><exponent>1.7</exponent>"
		"<smooth>true</smooth></texture>"
		"<texture><path>missing.png</path></texture>"
		"<diffuse_albedo><texture><texture_index>1</texture_index></texture></diffuse_albedo>"
		"<exponent><texture><texture_index>0</texture_index></texture></exponent>"
		"<ior>1.5</ior></phong></material>\n");
	importInto(doc, path);
	BaseMaterial* wood = material(doc, "Wood");
	ASSERT_NE(wood, nullptr);
	const BaseContainer& data = *wood->GetDataInstance();
	const std::string found = files.file("wood.png");
	BaseList2D* shader = data.GetLink(MAT_EXPONENT_LINK, doc);
	ASSERT_NE(shader, nullptr);
	EXPECT_EQ(shader->GetDataInstance()->GetFilename(BITMAPSHADER_FILENAME).GetString().GetStdString(), found);
	expectValues(data, {{MAT_EXPONENT_A, 0.5}, {MAT_EXPONENT_B, 2.0}, {MAT_EXPONENT_C, 0.25}, {MAT_EXPONENT_EXPONENT, 1.7}});
	// The exponent channel's smooth flag lands in the bump channel's.
	EXPECT_TRUE(data.GetBool(MAT_BUMP_SMOOTH));
	EXPECT_FALSE(data.GetBool(MAT_EXPONENT_SMOOTH));
	// A missing file leaves the albedo channel as it was.
	EXPECT_EQ(data.GetLink(MAT_ALBEDO_LINK, doc), nullptr);
	EXPECT_EQ(lines(HostConsole::Kind::Print),
		(std::vector<std::string>{"Failed to load texture from: " + files.file("missing.png"),
			"Loaded texture: " + found}));
}

// A path with a colon or a backslash is taken as a full path; any other is
// joined to the material file's folder.
TEST_F(MaterialImportTest, FullAndRelativeTexturePaths)
{
	VelornTest::writeFile(files.file("rel.png"), "image");
	Reference<Velorn::DiffuseMaterial> diffuse = new Velorn::DiffuseMaterial();
	Velorn::Texture relative, full;
	relative.path = "rel.png";
	full.path = "C:\\textures\\rel.png";
	diffuse->textures.push_back(full);
	diffuse->textures.push_back(relative);
	diffuse->albedo = new Velorn::TextureWavelengthDependentParam(0);
	diffuse->emission = new Velorn::TextureWavelengthDependentParam(1);
	Reference<Velorn::SceneNodeMaterial> node = new Velorn::SceneNodeMaterial(diffuse);
	node->setName("Paths");
	Velorn::Vector<Reference<Velorn::SceneNode>> nodes;
	nodes.push_back(node);

	MaterialImporter importer(*doc);
	importer.importNodes(nodes, files.path());
	EXPECT_EQ(lines(HostConsole::Kind::Print),
		(std::vector<std::string>{
			"Failed to load texture from: C:\\textures\\rel.png", "Loaded texture: " + files.file("rel.png")}));
	const BaseContainer& data = *material(doc, "Paths")->GetDataInstance();
	EXPECT_NE(data.GetLink(MAT_EMISSION_LINK, doc), nullptr);
	EXPECT_TRUE(data.GetBool(MAT_USE_EMISSION));
}

TEST_F(MaterialImportTest, EveryWarningInOneDialog)
{
	const std::string medium = "<medium><uid>9</uid><name>M</name><basic><ior>1.5</ior>"
		"<cauchy_b_coeff>0</cauchy_b_coeff><absorption_coefficient_spectrum><uniform><value>0</value></uniform>"
		"</absorption_coefficient_spectrum></basic></medium>\n";
	const std::string path = writeMaterialFile("warnings.vlm",
		medium +
			"<material><name>Wood</name><diffuse>"
			"<albedo><constant><blackbody><temperature>5000</temperature><gain>1</gain></blackbody></constant></albedo>"
			"<bump><constant>0.5</constant></bump><displacement><constant>0.1</constant></displacement>"
			"<emission>" +
			rgb("1 1 1") +
			"</emission></diffuse></material>\n"
			"<material><name>Stone</name><oren_nayar><albedo><constant><regular_tabulated>"
			"<start_wavelength>4e-7</start_wavelength><end_wavelength>7e-7</end_wavelength>"
			"<num_values>2</num_values><values>0.1 0.2</values></regular_tabulated></constant></albedo>"
			"<sigma><constant>0.3</constant></sigma></oren_nayar></material>\n"
			"<material><name>Clay</name><diffuse_transmitter><albedo><constant><peak><peak_min>400</peak_min>"
			"<peak_width>100</peak_width><peak_value>1</peak_value><base_value>0</base_value></peak></constant>"
			"</albedo></diffuse_transmitter></material>\n"
			"<material><name>Glass</name><specular><internal_medium_uid>9</internal_medium_uid>"
			"<transparent>true</transparent><absorption_layer_transmittance><constant><blackbody>"
			"<temperature>3000</temperature><gain>1</gain></blackbody></constant></absorption_layer_transmittance>"
			"</specular></material>\n"
			"<material><name>Ice</name><glossy_transparent><internal_medium_uid>9</internal_medium_uid>"
			"<absorption_layer_transmittance><constant><peak><peak_min>400</peak_min><peak_width>100</peak_width>"
			"<peak_value>1</peak_value><base_value>0</base_value></peak></constant>"
			"</absorption_layer_transmittance><emission><constant><uniform><value>2</value></uniform></constant>"
			"</emission></glossy_transparent></material>\n");
	importInto(doc, path);
	EXPECT_EQ(lines(HostConsole::Kind::Message),
		(std::vector<std::string>{"Import warnings:"
								  "\n- Albedo blackbody spectrum in Material \"Wood\" not supported."
								  "\n- Bump constant in Material \"Wood\" not supported."
								  "\n- Displacement constant in Material \"Wood\" not supported."
								  "\n- Emission RGB spectrum in Material \"Wood\" not supported."
								  "\n- Albedo tabulated spectrum in Material \"Stone\" not supported."
								  "\n- Albedo peak spectrum in Material \"Clay\" not supported."
								  "\n- Absorption layer blackbody spectrum in Material \"Glass\" not supported."
								  "\n- Emission uniform spectrum in Material \"Ice\" not supported."
								  "\n- Absorption layer spectrum in Material \"Ice\" not supported."}));
	// The list is emptied once shown.
	HostConsole::get().clear();
	importInto(doc, writeMaterialFile("quiet.vlm", "<material><name>Plain</name><diffuse/></material>\n"));
	EXPECT_TRUE(lines(HostConsole::Kind::Message).empty());
	EXPECT_EQ(MaterialImporter::warningText({}), String());
}

// An RGB albedo stays as it is with scale 1; a generic spectrum channel
// takes the unit colour: divided by the largest component, which becomes
// the scale. The medium's colour is the transmission the export inverts.
TEST_F(MaterialImportTest, ColoursAndMediaByTheirRules)
{
	const std::string path = writeMaterialFile("colours.vlm",
		"<medium><uid>5</uid><name>Skin</name><precedence>3</precedence><epidermis>"
		"<melanin_fraction>0.2</melanin_fraction><melanin_type_blend>0.7</melanin_type_blend></epidermis></medium>\n"
		"<medium><uid>6</uid><name>Air</name><atmosphere><center>1 2 3</center><turbidity>2.5</turbidity>"
		"</atmosphere></medium>\n"
		"<medium><uid>7</uid><name>Tinted</name><basic><ior>1.4</ior><cauchy_b_coeff>0</cauchy_b_coeff>"
		"<absorption_coefficient_spectrum><rgb><rgb>4 2 1</rgb><gamma>1</gamma></rgb>"
		"</absorption_coefficient_spectrum><subsurface_scattering><scattering_coefficient_spectrum><blackbody>"
		"<temperature>4000</temperature><gain>0.5</gain></blackbody></scattering_coefficient_spectrum>"
		"<phase_function><henyey_greenstein><g_spectrum><rgb><rgb>0.3 0.4 0.5</rgb><gamma>2.2</gamma></rgb>"
		"</g_spectrum></henyey_greenstein></phase_function></subsurface_scattering></basic></medium>\n"
		"<material><uid>1</uid><name>Hot</name><diffuse><albedo>" +
			rgb("2 1 0", "2.2") +
			"</albedo><base_emission><constant><rgb><rgb>3 1.5 0</rgb><gamma>1</gamma></rgb></constant>"
			"</base_emission></diffuse></material>\n"
			"<material><uid>2</uid><name>Coat</name><coating><substrate_material_uid>1</substrate_material_uid>"
			"<absorption>" +
			rgb("2 1 0", "1.5") +
			"</absorption><thickness><constant>2e-6</constant></thickness></coating></material>\n"
			"<material><uid>3</uid><name>Face</name><specular><internal_medium_uid>5</internal_medium_uid>"
			"<transparent>false</transparent></specular></material>\n"
			"<material><uid>4</uid><name>Sky</name><glossy_transparent><internal_medium_uid>6</internal_medium_uid>"
			"</glossy_transparent></material>\n"
			"<material><uid>8</uid><name>Jade</name><specular><internal_medium_uid>7</internal_medium_uid>"
			"<transparent>true</transparent></specular></material>\n");
	importInto(doc, path);

	const struct
	{
		const char* name;
		Values values;
	} cases[] = {
		{"Hot", {{MAT_ALBEDO_COLOUR, Vector(2, 1, 0)}, {MAT_ALBEDO_SCALE, 1.0}, {MAT_ALBEDO_GAMMA, 2.2},
			{MAT_EMISSION_RGB_COLOUR, Vector(1, 0.5, 0)}, {MAT_EMISSION_RGB_SCALE, 3.0}, {MAT_USE_EMISSION, 1}}},
		{"Coat", {{MAT_CH_COAT_ABSORPTION + MAT_CH_COLOUR, Vector(1, 0.5, 0)},
			{MAT_CH_COAT_ABSORPTION + MAT_CH_SCALE, 2.0}, {MAT_CH_COAT_ABSORPTION + MAT_CH_GAMMA, 1.5},
			{MAT_CH_COAT_ABSORPTION + MAT_CH_MODE, MAT_SPECTRUM_RGB}, {MAT_CH_COAT_THICKNESS + MAT_CH_VALUE, 2.0}}},
		{"Face", {{MAT_MEDIUM_KIND, MAT_MEDIUM_EPIDERMIS}, {MAT_MEDIUM_PRECEDENCE, 3}, {MAT_EPIDERMIS_MELANIN, 0.2},
			{MAT_EPIDERMIS_TYPE_BLEND, 0.7}, {MAT_TRANSPARENT, 0}}},
		// The scene is z-up: y and z change places. A medium without
		// precedence reads as 2.
		{"Sky", {{MAT_MEDIUM_KIND, MAT_MEDIUM_ATMOSPHERE}, {MAT_ATMOSPHERE_CENTRE, Vector(1, 3, 2)},
			{MAT_ATMOSPHERE_TURBIDITY, 2.5}, {MAT_MEDIUM_PRECEDENCE, 2}}},
		// (4,2,1) is the unit colour (1,0.5,0.25) at scale 4; the host keeps
		// what passes: 1 - component.
		{"Jade", {{MAT_MEDIUM_KIND, MAT_MEDIUM_BASIC}, {MAT_MEDIUM_IOR, 1.4}, {MAT_ABSORPTION_MODE, MAT_SPECTRUM_RGB},
			{MAT_ABSORPTION_RGB_COLOUR, Vector(0, 0.5, 0.75)}, {MAT_ABSORPTION_RGB_SCALE, 4.0}, {MAT_MEDIUM_SSS, 1},
			{MAT_SCATTERING_MODE, MAT_SPECTRUM_BLACKBODY}, {MAT_SCATTERING_BLACKBODY_TEMPERATURE, 4000.0},
			{MAT_SCATTERING_BLACKBODY_GAIN, 0.5}, {MAT_PHASE_KIND, MAT_PHASE_HENYEY_GREENSTEIN},
			{MAT_PHASE_G, Vector(0.3, 0.4, 0.5)}, {MAT_PHASE_G_GAMMA, 1.0}}},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		expectValues(*material(doc, c.name)->GetDataInstance(), c.values);
	}
	const BaseContainer& coat = *material(doc, "Coat")->GetDataInstance();
	EXPECT_EQ(coat.GetLink(MAT_COAT_SUBSTRATE, doc), material(doc, "Hot"));
	// Without emission in the file the emission page stays off.
	EXPECT_FALSE(coat.GetBool(MAT_USE_EMISSION));
}

TEST_F(MaterialImportTest, PackedFileUnpacksIntoATimerFolder)
{
	const std::string vlm = head +
		"<material><name>Packed</name><diffuse><texture><path>tex/wood.png</path></texture>"
		"<albedo><texture><texture_index>0</texture_index></texture></albedo></diffuse></material>\n" + tail;
	const std::string archive = files.file("wood.pvlm");
	writeZip(archive, {{"tex/", ""}, {"tex/wood.png", "image"}, {"wood.vlm", vlm}, {"other.vlm", head + tail}});

	MaterialImporter importer(*doc);
	importer.importFile(Filename(String(archive)));
	const std::string folder = Velorn::FileUtils::join(materialsFolder(), "4711");
	EXPECT_EQ(importer.unpackedFolder(), folder);
	const std::string texture = Velorn::FileUtils::join(folder, "tex/wood.png");
	EXPECT_EQ(lines(HostConsole::Kind::Print), (std::vector<std::string>{"Loaded texture: " + texture}));
	BaseMaterial* packed = material(doc, "Packed");
	ASSERT_NE(packed, nullptr);
	BaseList2D* shader = packed->GetDataInstance()->GetLink(MAT_ALBEDO_LINK, doc);
	ASSERT_NE(shader, nullptr);
	EXPECT_EQ(shader->GetDataInstance()->GetFilename(BITMAPSHADER_FILENAME).GetString().GetStdString(), texture);

	// Within the same millisecond the next archive gets the next number.
	MaterialImporter again(*doc);
	again.importFile(Filename(String(archive)));
	EXPECT_EQ(again.unpackedFolder(), Velorn::FileUtils::join(materialsFolder(), "4712"));
}

TEST_F(MaterialImportTest, BadInputEndsWithAClearMessage)
{
	const std::string links = writeMaterialFile("links.vlm",
		"<medium><uid>4</uid><name>M</name><dermis><hemoglobin_fraction>0.1</hemoglobin_fraction></dermis>"
		"</medium>\n"
		"<material><uid>1</uid><name>Mix</name><blend><a_mat_uid>99</a_mat_uid><b_mat_uid>4</b_mat_uid></blend>"
		"</material>\n"
		"<material><uid>2</uid><name>Glass</name><specular><internal_medium_uid>1</internal_medium_uid>"
		"<transparent>true</transparent></specular></material>\n"
		"<material><uid>3</uid><name>Sky</name><sunsky><sundir>0 0 1</sundir><turbidity>2</turbidity></sunsky>"
		"</material>\n");
	const std::string unknown_root = writeMaterialFile("bad.vlm", "<material><name>X</name></material>\n");
	const std::string corrupt = files.file("corrupt.pvlm");
	VelornTest::writeFile(corrupt, "PK\x03\x04 this is not a zip archive");
	const std::string evil = files.file("evil.pvlm");
	writeZip(evil, {{"good.vlm", head + tail}, {"../evil.vlm", head + tail}});
	const std::string empty = files.file("empty.pvlm");
	writeZip(empty, {{"folder/inner.vlm", head + tail}});
	const std::string text = files.file("notes.txt");
	VelornTest::writeFile(text, "text");

	const struct
	{
		const char* name;
		std::string file;
		std::vector<std::string> console;
	} cases[] = {
		{"links to missing or wrong nodes", links,
			{"Material \"Mix\": its link to UID 99 names no material of the file; the link was left empty.",
				"Material \"Mix\": its link to UID 4 names no material of the file; the link was left empty.",
				"Material \"Glass\": its medium of UID 1 is no medium of the file; the medium was not imported.",
				"Material \"Sky\" is a sunsky material, which the plug-in has no kind for; it was imported as a "
				"default material."}},
		{"no type element", unknown_root,
			{"Failed to parse material: no material element of any type found   (In element 'material', around line 3, "
			 "column 1)"}},
		{"corrupt archive", corrupt,
			{"Material archive '" + corrupt + "' cannot be read: Not a zip archive.", "no vlm"}},
		{"entry outside the folder", evil,
			{"Material archive '" + evil +
					"' was refused: its entry '../evil.vlm' would unpack outside the folder (a \"..\" part); "
					"nothing of it was kept.",
				"no vlm"}},
		{"no material file at the top", empty,
			{"Material archive '" + empty + "' holds no .vlm file at its top.", "no vlm"}},
		{"not a material file", text, {"no vlm"}},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		HostConsole::get().clear();
		BaseDocument* target = BaseDocument::Alloc();
		importInto(target, c.file);
		EXPECT_EQ(lines(HostConsole::Kind::Print), c.console);
		BaseDocument::Free(target);
	}
	// Nothing was unpacked anywhere: the materials folder and the folder
	// above the archive's target hold nothing of the archives.
	std::vector<std::string> names;
	Velorn::Platform::listDirectory(materialsFolder(), names);
	EXPECT_TRUE(names.empty());
	EXPECT_FALSE(Velorn::FileUtils::fileExists(plugin_dir.file("evil.vlm")));
	EXPECT_FALSE(Velorn::FileUtils::fileExists(files.file("evil.vlm")));

	// What the links file left: the blend without inputs, the glass without
	// medium, the sky as a default material.
	importInto(doc, links);
	EXPECT_EQ(material(doc, "Mix")->GetDataInstance()->GetLink(MAT_BLEND_A, doc), nullptr);
	EXPECT_EQ(material(doc, "Sky")->GetDataInstance()->GetInt32(MAT_TYPE), MAT_TYPE_DIFFUSE);
}
