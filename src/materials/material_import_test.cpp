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

#include <cmath>
#include <functional>
#include <map>
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

	static bool printed(const std::string& line)
	{
		const std::vector<std::string> all = lines(HostConsole::Kind::Print);
		return std::find(all.begin(), all.end(), line) != all.end();
	}

	std::string materialsFolder() const { return plugin_dir.file("materials"); }

	VelornTest::TempDir files;
	VelornTest::TempDir plugin_dir;
	Filename* saved_plugin_path = nullptr;
};

// How one parameter of the source is compared with the import's.
struct Check
{
	enum Kind
	{
		Same,    // the value as it stands
		Product, // colour times the scale at id2: the scene holds only that
		Link,    // the name of the linked material
	};
	int32_t id;
	Kind kind = Same;
	int32_t id2 = 0;
};

void expectSameValue(const BaseContainer& expected, const BaseContainer& actual, int32_t id)
{
	const GeData& want = expected.GetData(id);
	const GeData& got = actual.GetData(id);
	switch(want.GetType())
	{
	case DA_REAL: EXPECT_NEAR(got.GetFloat(), want.GetFloat(), 1e-9 * std::max(1.0, std::fabs(want.GetFloat()))); break;
	case DA_VECTOR:
	{
		const Vector w = want.GetVector(), g = got.GetVector();
		EXPECT_NEAR(g.x, w.x, 1e-12);
		EXPECT_NEAR(g.y, w.y, 1e-12);
		EXPECT_NEAR(g.z, w.z, 1e-12);
		break;
	}
	case DA_LONG: EXPECT_EQ(got.GetInt32(), want.GetInt32()); break;
	case DA_STRING: EXPECT_EQ(got.GetString().GetStdString(), want.GetString().GetStdString()); break;
	// Unset in the source: the import leaves it unset too.
	case DA_NIL: EXPECT_EQ(got.GetType(), DA_NIL); break;
	default: ADD_FAILURE() << "a value of type " << want.GetType() << " is not compared"; break;
	}
}

} // namespace

// Each kind exported from a document, written as a scene of material nodes
// and imported into a fresh document comes back with the parameters that
// its export reads. Left out of the comparison, as the scene cannot hold
// them apart: a colour and its scale (only their product), the Phong
// kind's fresnel scale, backface emission and the shadow catcher (the
// import has no filler for them), and the phase function's gamma (the
// import sets 1.0).
TEST_F(MaterialImportTest, EachKindComesBackWithTheParametersItWasExportedFrom)
{
	const std::string texture = files.file("bumps.png");
	VelornTest::writeFile(texture, "not decoded by the import");

	BaseMaterial* first = newMaterial(MAT_TYPE_DIFFUSE, "First");
	first->GetDataInstance()->SetVector(MAT_ALBEDO_COLOUR, Vector(0.1, 0.2, 0.3));
	BaseMaterial* second = newMaterial(MAT_TYPE_OREN_NAYAR, "Second");
	second->GetDataInstance()->SetFloat(MAT_SIGMA_VALUE, 0.45);

	const std::vector<Check> albedo = {{MAT_USE_ALBEDO}, {MAT_ALBEDO_COLOUR, Check::Product, MAT_ALBEDO_SCALE},
		{MAT_ALBEDO_GAMMA}};
	const std::vector<Check> absorption_layer = {{MAT_USE_ABSORPTION_LAYER},
		{MAT_ABSORPTION_LAYER_COLOUR, Check::Product, MAT_ABSORPTION_LAYER_SCALE}, {MAT_ABSORPTION_LAYER_GAMMA}};

	const struct
	{
		const char* name;
		int32_t kind;
		std::function<void(BaseContainer&)> setup;
		std::vector<Check> checks;
	} cases[] = {
		{"Diffuse", MAT_TYPE_DIFFUSE,
			[&](BaseContainer& d) {
				d.SetVector(MAT_ALBEDO_COLOUR, Vector(0.5, 0.25, 1.0));
				d.SetFloat(MAT_ALBEDO_SCALE, 0.8);
				d.SetFloat(MAT_ALBEDO_GAMMA, 1.8);
				d.SetBool(MAT_USE_EMISSION, true);
				d.SetInt32(MAT_EMISSION_MODE, MAT_SPECTRUM_RGB);
				d.SetVector(MAT_EMISSION_RGB_COLOUR, Vector(1.0, 0.5, 0.25));
				d.SetFloat(MAT_EMISSION_RGB_SCALE, 4.0);
				d.SetFloat(MAT_EMISSION_RGB_GAMMA, 2.0);
				BaseShader* bitmap = BaseShader::Alloc(Xbitmap);
				bitmap->GetDataInstance()->SetFilename(BITMAPSHADER_FILENAME, Filename(String(texture)));
				material(doc, "Diffuse")->InsertShader(bitmap);
				d.SetBool(MAT_USE_BUMP, true);
				d.SetLink(MAT_BUMP_LINK, bitmap);
				d.SetFloat(MAT_BUMP_EXPONENT, 1.5);
				d.SetFloat(MAT_BUMP_A, 0.1);
				d.SetFloat(MAT_BUMP_B, 0.02);
				d.SetFloat(MAT_BUMP_C, 0.3);
				d.SetBool(MAT_BUMP_SMOOTH, true);
			},
			{{MAT_USE_ALBEDO}, {MAT_ALBEDO_COLOUR, Check::Product, MAT_ALBEDO_SCALE}, {MAT_ALBEDO_GAMMA},
				{MAT_USE_EMISSION}, {MAT_EMISSION_MODE},
				{MAT_EMISSION_RGB_COLOUR, Check::Product, MAT_EMISSION_RGB_SCALE}, {MAT_EMISSION_RGB_GAMMA},
				{MAT_EMISSION_LAYER}, {MAT_USE_BUMP}, {MAT_BUMP_EXPONENT}, {MAT_BUMP_A}, {MAT_BUMP_B}, {MAT_BUMP_C},
				{MAT_BUMP_SMOOTH}, {MAT_USE_DISPLACEMENT}, {MAT_USE_NORMAL_MAP}}},
		{"OrenNayar", MAT_TYPE_OREN_NAYAR,
			[](BaseContainer& d) {
				d.SetFloat(MAT_SIGMA_VALUE, 0.35);
				d.SetVector(MAT_ALBEDO_COLOUR, Vector(0.2, 0.4, 0.6));
				d.SetBool(MAT_USE_EMISSION, true);
				d.SetInt32(MAT_EMISSION_MODE, MAT_SPECTRUM_BLACKBODY);
				d.SetFloat(MAT_EMISSION_BLACKBODY_TEMPERATURE, 3200);
				d.SetFloat(MAT_EMISSION_BLACKBODY_GAIN, 2.5);
			},
			{{MAT_USE_SIGMA}, {MAT_SIGMA_VALUE}, {MAT_USE_ALBEDO}, {MAT_ALBEDO_COLOUR, Check::Product, MAT_ALBEDO_SCALE},
				{MAT_ALBEDO_GAMMA}, {MAT_EMISSION_MODE}, {MAT_EMISSION_BLACKBODY_TEMPERATURE},
				{MAT_EMISSION_BLACKBODY_GAIN}}},
		{"Phong", MAT_TYPE_PHONG,
			[](BaseContainer& d) {
				d.SetBool(MAT_PHONG_SPECULAR_MODE, true);
				d.SetFloat(MAT_EXPONENT_VALUE, 250);
				d.SetBool(MAT_PHONG_USE_NK, true);
				d.SetInt32(MAT_PHONG_NK_FILE, FindNkFile(String("Au.nk")));
				d.SetFloat(MAT_PHONG_IOR, 1.33);
				d.SetVector(MAT_ALBEDO_COLOUR, Vector(0.9, 0.8, 0.1));
			},
			{{MAT_PHONG_SPECULAR_MODE}, {MAT_USE_EXPONENT}, {MAT_EXPONENT_VALUE}, {MAT_PHONG_USE_NK},
				{MAT_PHONG_NK_FILE}, {MAT_PHONG_IOR}, {MAT_ALBEDO_COLOUR, Check::Product, MAT_ALBEDO_SCALE},
				{MAT_ALBEDO_GAMMA}}},
		{"Transmitter", MAT_TYPE_DIFFUSE_TRANSMITTER,
			[](BaseContainer& d) {
				// Binding the scene needs the transmitter's medium.
				d.SetBool(MAT_USE_MEDIUM, true);
				d.SetVector(MAT_ALBEDO_COLOUR, Vector(0.3, 0.3, 0.9));
				d.SetBool(MAT_USE_EMISSION, true);
				d.SetInt32(MAT_EMISSION_MODE, MAT_SPECTRUM_UNIFORM);
				d.SetFloat(MAT_EMISSION_UNIFORM, 7.5);
			},
			{{MAT_USE_ALBEDO}, {MAT_ALBEDO_COLOUR, Check::Product, MAT_ALBEDO_SCALE}, {MAT_ALBEDO_GAMMA},
				{MAT_EMISSION_MODE}, {MAT_EMISSION_UNIFORM}}},
		{"Specular", MAT_TYPE_SPECULAR,
			[](BaseContainer& d) {
				d.SetBool(MAT_TRANSPARENT, false);
				d.SetString(MAT_PRIVATE_DATA, String("coated"));
				d.SetInt32(MAT_MEDIUM_PRECEDENCE, 7);
				d.SetFloat(MAT_MEDIUM_IOR, 1.52);
				d.SetFloat(MAT_MEDIUM_CAUCHY_B, 0.004);
				d.SetInt32(MAT_ABSORPTION_MODE, MAT_SPECTRUM_RGB);
				d.SetVector(MAT_ABSORPTION_RGB_COLOUR, Vector(0.25, 0.5, 0.75));
				d.SetFloat(MAT_ABSORPTION_RGB_GAMMA, 1.4);
				d.SetBool(MAT_MEDIUM_SSS, true);
				d.SetInt32(MAT_SCATTERING_MODE, MAT_SPECTRUM_UNIFORM);
				d.SetFloat(MAT_SCATTERING_UNIFORM, 0.3);
				d.SetInt32(MAT_PHASE_KIND, MAT_PHASE_HENYEY_GREENSTEIN);
				d.SetVector(MAT_PHASE_G, Vector(0.1, 0.2, 0.3));
				d.SetBool(MAT_USE_ABSORPTION_LAYER, true);
				d.SetVector(MAT_ABSORPTION_LAYER_COLOUR, Vector(0.6, 0.7, 0.8));
				d.SetBool(MAT_USE_EMISSION, true);
				d.SetInt32(MAT_EMISSION_MODE, MAT_SPECTRUM_TABULATED);
				d.SetFloat(MAT_EMISSION_TABLE_START, 380);
				d.SetFloat(MAT_EMISSION_TABLE_END, 720);
				d.SetString(MAT_EMISSION_TABLE_VALUES, String("0.1 0.25 0.3"));
			},
			{{MAT_TRANSPARENT}, {MAT_PRIVATE_DATA}, {MAT_MEDIUM_KIND}, {MAT_MEDIUM_PRECEDENCE}, {MAT_MEDIUM_IOR},
				{MAT_MEDIUM_CAUCHY_B}, {MAT_ABSORPTION_MODE},
				{MAT_ABSORPTION_RGB_COLOUR, Check::Product, MAT_ABSORPTION_RGB_SCALE}, {MAT_ABSORPTION_RGB_GAMMA},
				{MAT_MEDIUM_SSS}, {MAT_SCATTERING_MODE}, {MAT_SCATTERING_UNIFORM}, {MAT_PHASE_KIND}, {MAT_PHASE_G},
				{MAT_USE_ABSORPTION_LAYER}, {MAT_ABSORPTION_LAYER_COLOUR, Check::Product, MAT_ABSORPTION_LAYER_SCALE},
				{MAT_ABSORPTION_LAYER_GAMMA}, {MAT_EMISSION_MODE}, {MAT_EMISSION_TABLE_START},
				{MAT_EMISSION_TABLE_END}, {MAT_EMISSION_TABLE_VALUES}}},
		{"Glossy", MAT_TYPE_GLOSSY_TRANSPARENT,
			[](BaseContainer& d) {
				d.SetFloat(MAT_EXPONENT_VALUE, 80);
				d.SetInt32(MAT_MEDIUM_KIND, MAT_MEDIUM_DERMIS);
				d.SetFloat(MAT_DERMIS_HEMOGLOBIN, 0.12);
				d.SetBool(MAT_USE_ABSORPTION_LAYER, true);
				d.SetVector(MAT_ABSORPTION_LAYER_COLOUR, Vector(0.5, 0.5, 0.1));
				d.SetBool(MAT_USE_EMISSION, true);
				d.SetInt32(MAT_EMISSION_MODE, MAT_SPECTRUM_PEAK);
				d.SetFloat(MAT_EMISSION_PEAK_MIN, 450);
				d.SetFloat(MAT_EMISSION_PEAK_WIDTH, 120);
				d.SetFloat(MAT_EMISSION_PEAK_BASE, 0.5);
				d.SetFloat(MAT_EMISSION_PEAK_VALUE, 3);
			},
			{{MAT_USE_EXPONENT}, {MAT_EXPONENT_VALUE}, {MAT_MEDIUM_KIND}, {MAT_DERMIS_HEMOGLOBIN},
				{MAT_USE_ABSORPTION_LAYER}, {MAT_ABSORPTION_LAYER_COLOUR, Check::Product, MAT_ABSORPTION_LAYER_SCALE},
				{MAT_EMISSION_MODE}, {MAT_EMISSION_PEAK_MIN}, {MAT_EMISSION_PEAK_WIDTH}, {MAT_EMISSION_PEAK_BASE},
				{MAT_EMISSION_PEAK_VALUE}}},
		{"Blend", MAT_TYPE_BLEND,
			[&](BaseContainer& d) {
				d.SetLink(MAT_BLEND_A, first);
				d.SetLink(MAT_BLEND_B, second);
				d.SetFloat(MAT_ALPHA_VALUE, 0.3);
				d.SetBool(MAT_BLEND_STEP, true);
			},
			{{MAT_BLEND_A, Check::Link}, {MAT_BLEND_B, Check::Link}, {MAT_USE_ALPHA}, {MAT_ALPHA_VALUE},
				{MAT_BLEND_STEP}}},
		{"Null", MAT_TYPE_NULL, [](BaseContainer&) {}, {}},
		{"Coating", MAT_TYPE_COATING,
			[&](BaseContainer& d) {
				d.SetLink(MAT_COAT_SUBSTRATE, second);
				d.SetFloat(MAT_COAT_IOR, 1.7);
				d.SetBool(MAT_COAT_INTERFERENCE, true);
				d.SetInt32(MAT_CH_COAT_ABSORPTION + MAT_CH_MODE, MAT_SPECTRUM_RGB);
				d.SetVector(MAT_CH_COAT_ABSORPTION + MAT_CH_COLOUR, Vector(0.5, 1.0, 0.25));
				d.SetFloat(MAT_CH_COAT_ABSORPTION + MAT_CH_SCALE, 3.0);
				d.SetFloat(MAT_CH_COAT_ABSORPTION + MAT_CH_GAMMA, 1.2);
				d.SetFloat(MAT_CH_FRESNEL_SCALE + MAT_CH_VALUE, 0.9);
				d.SetFloat(MAT_CH_ROUGHNESS + MAT_CH_VALUE, 0.15);
				d.SetFloat(MAT_CH_COAT_THICKNESS + MAT_CH_VALUE, 250);
			},
			{{MAT_COAT_SUBSTRATE, Check::Link}, {MAT_COAT_IOR}, {MAT_COAT_INTERFERENCE},
				{MAT_CH_COAT_ABSORPTION + MAT_CH_MODE},
				{MAT_CH_COAT_ABSORPTION + MAT_CH_COLOUR, Check::Product, MAT_CH_COAT_ABSORPTION + MAT_CH_SCALE},
				{MAT_CH_COAT_ABSORPTION + MAT_CH_GAMMA}, {MAT_USE_COAT_ABSORPTION}, {MAT_USE_FRESNEL_SCALE},
				{MAT_CH_FRESNEL_SCALE + MAT_CH_VALUE}, {MAT_USE_ROUGHNESS}, {MAT_CH_ROUGHNESS + MAT_CH_VALUE},
				{MAT_USE_COAT_THICKNESS}, {MAT_CH_COAT_THICKNESS + MAT_CH_VALUE}}},
		{"Thin", MAT_TYPE_DOUBLE_SIDED_THIN,
			[&](BaseContainer& d) {
				d.SetLink(MAT_THIN_FRONT, first);
				d.SetLink(MAT_THIN_BACK, second);
				d.SetFloat(MAT_THIN_IOR, 1.3);
				d.SetInt32(MAT_CH_TRANSMITTANCE + MAT_CH_MODE, MAT_SPECTRUM_BLACKBODY);
				d.SetFloat(MAT_CH_TRANSMITTANCE + MAT_CH_TEMPERATURE, 5000);
				d.SetFloat(MAT_CH_TRANSMITTANCE + MAT_CH_GAIN, 2);
				d.SetFloat(MAT_CH_FRESNEL_SCALE + MAT_CH_VALUE, 0.8);
				d.SetFloat(MAT_CH_BACK_FRESNEL_SCALE + MAT_CH_VALUE, 0.7);
				d.SetFloat(MAT_CH_ROUGHNESS + MAT_CH_VALUE, 0.2);
				d.SetFloat(MAT_CH_BACK_ROUGHNESS + MAT_CH_VALUE, 0.35);
				d.SetFloat(MAT_CH_R_F + MAT_CH_VALUE, 0.6);
			},
			{{MAT_THIN_FRONT, Check::Link}, {MAT_THIN_BACK, Check::Link}, {MAT_THIN_IOR},
				{MAT_CH_TRANSMITTANCE + MAT_CH_MODE}, {MAT_CH_TRANSMITTANCE + MAT_CH_TEMPERATURE},
				{MAT_CH_TRANSMITTANCE + MAT_CH_GAIN}, {MAT_CH_FRESNEL_SCALE + MAT_CH_VALUE},
				{MAT_CH_BACK_FRESNEL_SCALE + MAT_CH_VALUE}, {MAT_CH_ROUGHNESS + MAT_CH_VALUE},
				{MAT_CH_BACK_ROUGHNESS + MAT_CH_VALUE}, {MAT_CH_R_F + MAT_CH_VALUE}, {MAT_USE_TRANSMITTANCE},
				{MAT_USE_R_F}, {MAT_USE_BACK_ROUGHNESS}}},
	};

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
	{
		BaseMaterial* source = newMaterial(c.kind, c.name);
		c.setup(*source->GetDataInstance());
		ASSERT_TRUE(exportLinkedMaterial(source, *root, settings).valid()) << c.name;
	}
	const std::string path = files.file("all_kinds.vlm");
	root->finalise(Velorn::String(path));
	root->writeToFile(Velorn::String(path), false, nullptr);

	BaseDocument* imported = BaseDocument::Alloc();
	importInto(imported, path);
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		BaseMaterial* source = material(doc, c.name);
		BaseMaterial* target = material(imported, c.name);
		if(c.kind == MAT_TYPE_NULL)
		{
			EXPECT_EQ(target, nullptr);
			continue;
		}
		ASSERT_NE(target, nullptr);
		const BaseContainer& want = *source->GetDataInstance();
		const BaseContainer& got = *target->GetDataInstance();
		EXPECT_EQ(got.GetInt32(MAT_TYPE), c.kind);
		for(const Check& check : c.checks)
		{
			SCOPED_TRACE(check.id);
			switch(check.kind)
			{
			case Check::Same: expectSameValue(want, got, check.id); break;
			case Check::Product:
			{
				const Vector w = want.GetVector(check.id) * want.GetFloat(check.id2);
				const Vector g = got.GetVector(check.id) * got.GetFloat(check.id2);
				EXPECT_NEAR(g.x, w.x, 1e-12);
				EXPECT_NEAR(g.y, w.y, 1e-12);
				EXPECT_NEAR(g.z, w.z, 1e-12);
				break;
			}
			case Check::Link:
			{
				BaseList2D* w = want.GetLink(check.id, doc);
				BaseList2D* g = got.GetLink(check.id, imported);
				ASSERT_NE(w, nullptr);
				ASSERT_NE(g, nullptr);
				EXPECT_EQ(g->GetName(), w->GetName());
				EXPECT_EQ(g->GetDocument(), imported);
				break;
			}
			}
		}
	}
	// The bump texture is a bitmap shader of the file, owned by the material.
	BaseList2D* bump = material(imported, "Diffuse")->GetDataInstance()->GetLink(MAT_BUMP_LINK, imported);
	ASSERT_NE(bump, nullptr);
	EXPECT_EQ(bump->GetType(), Xbitmap);
	EXPECT_EQ(bump->GetDataInstance()->GetFilename(BITMAPSHADER_FILENAME).GetString().GetStdString(), texture);
	// The materials that the links name came in once each, under their names;
	// the null material left nothing.
	EXPECT_EQ(materialCount(imported), materialCount(doc) - 1);
	EXPECT_TRUE(printed("Loaded texture: " + texture));
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
	EXPECT_EQ(mix.GetFloat(MAT_ALPHA_VALUE), 0.25);
	EXPECT_TRUE(mix.GetBool(MAT_BLEND_STEP));

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
	EXPECT_EQ(data.GetFloat(MAT_EXPONENT_A), 0.5);
	EXPECT_EQ(data.GetFloat(MAT_EXPONENT_B), 2.0);
	EXPECT_EQ(data.GetFloat(MAT_EXPONENT_C), 0.25);
	EXPECT_EQ(data.GetFloat(MAT_EXPONENT_EXPONENT), 1.7);
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

	const BaseContainer& hot = *material(doc, "Hot")->GetDataInstance();
	EXPECT_EQ(hot.GetVector(MAT_ALBEDO_COLOUR), Vector(2, 1, 0));
	EXPECT_EQ(hot.GetFloat(MAT_ALBEDO_SCALE), 1.0);
	EXPECT_EQ(hot.GetFloat(MAT_ALBEDO_GAMMA), 2.2);
	EXPECT_EQ(hot.GetVector(MAT_EMISSION_RGB_COLOUR), Vector(1, 0.5, 0));
	EXPECT_EQ(hot.GetFloat(MAT_EMISSION_RGB_SCALE), 3.0);
	EXPECT_TRUE(hot.GetBool(MAT_USE_EMISSION));

	const BaseContainer& coat = *material(doc, "Coat")->GetDataInstance();
	EXPECT_EQ(coat.GetVector(MAT_CH_COAT_ABSORPTION + MAT_CH_COLOUR), Vector(1, 0.5, 0));
	EXPECT_EQ(coat.GetFloat(MAT_CH_COAT_ABSORPTION + MAT_CH_SCALE), 2.0);
	EXPECT_EQ(coat.GetFloat(MAT_CH_COAT_ABSORPTION + MAT_CH_GAMMA), 1.5);
	EXPECT_EQ(coat.GetInt32(MAT_CH_COAT_ABSORPTION + MAT_CH_MODE), MAT_SPECTRUM_RGB);
	EXPECT_NEAR(coat.GetFloat(MAT_CH_COAT_THICKNESS + MAT_CH_VALUE), 2.0, 1e-12);
	EXPECT_EQ(coat.GetLink(MAT_COAT_SUBSTRATE, doc), material(doc, "Hot"));
	// Without emission in the file the emission page stays off.
	EXPECT_FALSE(coat.GetBool(MAT_USE_EMISSION));

	const BaseContainer& face = *material(doc, "Face")->GetDataInstance();
	EXPECT_EQ(face.GetInt32(MAT_MEDIUM_KIND), MAT_MEDIUM_EPIDERMIS);
	EXPECT_EQ(face.GetInt32(MAT_MEDIUM_PRECEDENCE), 3);
	EXPECT_EQ(face.GetFloat(MAT_EPIDERMIS_MELANIN), 0.2);
	EXPECT_EQ(face.GetFloat(MAT_EPIDERMIS_TYPE_BLEND), 0.7);
	EXPECT_FALSE(face.GetBool(MAT_TRANSPARENT));

	// The scene is z-up: y and z change places.
	const BaseContainer& sky = *material(doc, "Sky")->GetDataInstance();
	EXPECT_EQ(sky.GetInt32(MAT_MEDIUM_KIND), MAT_MEDIUM_ATMOSPHERE);
	EXPECT_EQ(sky.GetVector(MAT_ATMOSPHERE_CENTRE), Vector(1, 3, 2));
	EXPECT_EQ(sky.GetFloat(MAT_ATMOSPHERE_TURBIDITY), 2.5);
	// A medium without precedence reads as 2.
	EXPECT_EQ(sky.GetInt32(MAT_MEDIUM_PRECEDENCE), 2);

	// (4,2,1) is the unit colour (1,0.5,0.25) at scale 4; the host keeps
	// what passes: 1 - component.
	const BaseContainer& jade = *material(doc, "Jade")->GetDataInstance();
	EXPECT_EQ(jade.GetInt32(MAT_MEDIUM_KIND), MAT_MEDIUM_BASIC);
	EXPECT_EQ(jade.GetFloat(MAT_MEDIUM_IOR), 1.4);
	EXPECT_EQ(jade.GetInt32(MAT_ABSORPTION_MODE), MAT_SPECTRUM_RGB);
	EXPECT_EQ(jade.GetVector(MAT_ABSORPTION_RGB_COLOUR), Vector(0, 0.5, 0.75));
	EXPECT_EQ(jade.GetFloat(MAT_ABSORPTION_RGB_SCALE), 4.0);
	EXPECT_TRUE(jade.GetBool(MAT_MEDIUM_SSS));
	EXPECT_EQ(jade.GetInt32(MAT_SCATTERING_MODE), MAT_SPECTRUM_BLACKBODY);
	EXPECT_EQ(jade.GetFloat(MAT_SCATTERING_BLACKBODY_TEMPERATURE), 4000);
	EXPECT_EQ(jade.GetFloat(MAT_SCATTERING_BLACKBODY_GAIN), 0.5);
	EXPECT_EQ(jade.GetInt32(MAT_PHASE_KIND), MAT_PHASE_HENYEY_GREENSTEIN);
	EXPECT_EQ(jade.GetVector(MAT_PHASE_G), Vector(0.3, 0.4, 0.5));
	EXPECT_EQ(jade.GetFloat(MAT_PHASE_G_GAMMA), 1.0);
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
