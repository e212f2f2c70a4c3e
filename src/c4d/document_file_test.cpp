#include "c4d/atom_array.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "c4d/document_file.h"
#include "c4d/node_defaults.h"
#include "c4d/plugin_test_helpers.h"
#include "c4d/polygon_object.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"
#include "c4d/world_preferences.h"

#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace
{

struct FreeDocument
{
	void operator()(BaseDocument* doc) const { BaseDocument::Free(doc); }
};
using DocPtr = std::unique_ptr<BaseDocument, FreeDocument>;

const std::string EXAMPLE = VelornTest::testDataPath("../docs/document-format-example.json");

// The example and some tests name the renderer's video post and one of the
// plug-in's shaders: plain plug-ins stand in for them here.
void registerPlugins()
{
	registerPlainPlugins(PluginKind::VideoPost, {1020896});
	registerPlainPlugins(PluginKind::Shader, {1024769});
}

DocPtr loadExample()
{
	registerPlugins();
	return DocPtr(LoadDocumentFile(Filename(String(EXAMPLE))));
}

DocPtr read(const std::string& text, const std::string& file = "scene.json")
{
	registerPlugins();
	return DocPtr(ReadDocumentText(text, Filename(String(file))));
}

// The message ReadDocumentText throws for text; empty when it reads.
std::string failure(const std::string& text, const std::string& file = "scene.json")
{
	try
	{
		read(text, file);
	}
	catch(const DocumentFileExcep& e)
	{
		return e.what();
	}
	return std::string();
}

// The object at a path of names from the top of the object tree.
BaseObject* objectAt(const BaseDocument& doc, std::initializer_list<const char*> names)
{
	BaseObject* op = doc.GetFirstObject();
	BaseObject* found = nullptr;
	for(const char* name : names)
	{
		while(op && op->GetName() != String(name))
			op = op->GetNext();
		if(!op)
			return nullptr;
		found = op;
		op = op->GetDown();
	}
	return found;
}

// What the documented example holds, checked once as read and once more
// after a save and a load.
void expectExample(BaseDocument& doc)
{
	EXPECT_EQ(doc.GetDocumentName(), Filename("studio.c4d"));
	EXPECT_EQ(doc.GetDocumentPath(), Filename("/projects/studio"));
	EXPECT_EQ(doc.GetUnit(), DOCUMENT_UNIT_M);
	EXPECT_EQ(doc.GetFps(), 25);
	EXPECT_EQ(doc.GetTime(), BaseTime(12, 25));

	// Objects at their paths of names.
	const struct
	{
		std::initializer_list<const char*> path;
		int32_t type;
	} objects[] = {
		{{"Main Camera"}, Ocamera},
		{{"Set"}, Onull},
		{{"Set", "Ground"}, Opolygon},
		{{"Set", "Crate"}, Opolygon},
		{{"Set", "Key Light"}, Olight},
		{{"Set", "Ball"}, Osphere},
		{{"Set", "Rounded Box"}, Ocube},
		{{"Set", "Flag"}, Opolygon},
	};
	for(const auto& t : objects)
	{
		const BaseObject* op = objectAt(doc, t.path);
		SCOPED_TRACE(*(t.path.end() - 1));
		ASSERT_NE(op, nullptr);
		EXPECT_EQ(op->GetType(), t.type);
	}

	BaseObject* crate = objectAt(doc, {"Set", "Crate"});
	BaseObject* light = objectAt(doc, {"Set", "Key Light"});
	EXPECT_EQ(crate->GetRenderMode(), MODE_ON);
	EXPECT_EQ(crate->GetEditorMode(), MODE_OFF);
	EXPECT_EQ(objectAt(doc, {"Set"})->GetRenderMode(), MODE_UNDEF);
	EXPECT_TRUE(crate->GetDeformMode());
	EXPECT_FALSE(light->GetDeformMode());

	// Parameters of every type; links point into this document.
	const BaseMaterial* floor = doc.GetFirstMaterial();
	BaseShader* mix = floor->GetFirstShader()->GetNext();
	BaseContainer nested(7);
	nested.SetInt32(1, 2);
	nested.SetData(2, GeData());
	const struct
	{
		const BaseList2D* node;
		int32_t id;
		GeData expected;
	} params[] = {
		{light, 901, GeData("soft key")},
		{light, 903, GeData(BaseTime(1, 50))},
		{light, 904, GeData(nested)},
		// Mix owns Tint and Grain and links to them.
		{mix, 1600, GeData(static_cast<BaseList2D*>(mix->GetDown()))},
		{mix, 1601, GeData(static_cast<BaseList2D*>(mix->GetDown()->GetNext()))},
	};
	for(const auto& t : params)
	{
		SCOPED_TRACE(t.id);
		EXPECT_EQ(t.node->GetDataInstance()->GetData(t.id), t.expected);
	}
	EXPECT_EQ(mix->GetType(), 1024769);
	EXPECT_EQ(mix->GetDown()->GetNext()->GetType(), Xbitmap);
	// A default of the host light that the file leaves alone.
	EXPECT_EQ(light->GetDataInstance()->GetFloat(100012), 200.0);

	const BaseObject* ground = objectAt(doc, {"Set", "Ground"});
	const BaseTag* texture = ground->GetFirstTag();
	ASSERT_NE(texture, nullptr);
	EXPECT_EQ(texture->GetType(), Ttexture);
	EXPECT_EQ(texture->GetName(), String("Texture"));
	EXPECT_EQ(texture->GetObject(), ground);
	ASSERT_NE(texture->GetNext(), nullptr);
	EXPECT_EQ(texture->GetNext()->GetType(), Tphong);
	EXPECT_EQ(texture->GetNext()->GetNext()->GetType(), Tuvw);

	EXPECT_EQ(floor->GetType(), Mmaterial);
	EXPECT_EQ(floor->GetName(), String("Floor"));
	const BaseMaterial* paint = floor->GetNext();
	ASSERT_NE(paint, nullptr);
	EXPECT_EQ(paint->GetName(), String("Red Paint"));
	EXPECT_EQ(paint->GetNext(), nullptr);

	const LayerObject* props = static_cast<LayerObject*>(doc.GetLayerObjectRoot()->GetFirst());
	ASSERT_NE(props, nullptr);
	EXPECT_EQ(props->GetName(), String("Props"));
	EXPECT_TRUE(props->GetLayerData().render);
	EXPECT_FALSE(props->GetLayerData().view);
	EXPECT_EQ(crate->GetLayerObject(&doc), props);
	EXPECT_EQ(ground->GetLayerObject(&doc), nullptr);
	EXPECT_EQ(paint->GetLayerObject(&doc), props);
	EXPECT_EQ(floor->GetLayerObject(&doc), nullptr);
	EXPECT_TRUE(paint->GetBit(BIT_ACTIVE));
	EXPECT_FALSE(floor->GetBit(BIT_ACTIVE));

	// Channel switches: the file's on top of the standard material's
	// defaults, which have colour and specular on.
	const struct
	{
		const BaseMaterial* mat;
		int32_t channel;
		bool on;
	} channels[] = {
		{floor, CHANNEL_COLOR, true},
		{floor, CHANNEL_SPECULAR, true},
		{floor, CHANNEL_REFLECTION, false},
		{paint, CHANNEL_COLOR, true},
		{paint, CHANNEL_REFLECTION, true},
		{paint, CHANNEL_SPECULAR, false},
		{paint, CHANNEL_BUMP, false},
	};
	for(const auto& c : channels)
	{
		SCOPED_TRACE(c.mat->GetName().GetStdString() + " channel " + std::to_string(c.channel));
		EXPECT_EQ(c.mat->GetChannelState(c.channel), c.on);
	}
	// The colour shader is the material's own; links read by type see a
	// shader as no material, and a material as no shader.
	const BaseShader* colour = paint->GetFirstShader();
	ASSERT_NE(colour, nullptr);
	EXPECT_EQ(colour->GetType(), Xcolor);
	EXPECT_EQ(colour->GetDataInstance()->GetVector(COLORSHADER_COLOR), Vector(0.7, 0.05, 0.05));
	EXPECT_EQ(paint->GetDataInstance()->GetLink(MATERIAL_COLOR_SHADER, &doc, Xbase), colour);
	EXPECT_EQ(paint->GetDataInstance()->GetLink(MATERIAL_COLOR_SHADER, &doc, Mbase), nullptr);
	const BaseContainer* paintTag = crate->GetTag(Ttexture)->GetDataInstance();
	EXPECT_EQ(paintTag->GetLink(TEXTURETAG_MATERIAL, &doc, Mbase), paint);
	EXPECT_EQ(paintTag->GetLink(TEXTURETAG_MATERIAL, &doc, Xbase), nullptr);

	const RenderData* rd = doc.GetActiveRenderData();
	EXPECT_EQ(rd->GetName(), String("Final"));
	const BaseVideoPost* velorn = rd->GetFirstVideoPost();
	ASSERT_NE(velorn, nullptr);
	EXPECT_EQ(velorn->GetType(), 1020896);
	const BaseVideoPost* draft = velorn->GetNext();
	ASSERT_NE(draft, nullptr);
	EXPECT_EQ(draft->GetName(), String("Velorn draft"));
	EXPECT_EQ(draft->GetNext(), nullptr);

	// Inline geometry, and the model next to the example: two triangles,
	// then the quad. Corners at one position share a point, as in the file.
	const auto* groundPolygons = static_cast<const PolygonObject*>(ground);
	ASSERT_EQ(groundPolygons->GetPointCount(), 4);
	EXPECT_EQ(groundPolygons->GetPointR()[2], Vector(5, 0, 5));
	ASSERT_EQ(groundPolygons->GetPolygonCount(), 1);
	EXPECT_EQ(groundPolygons->GetPolygonR()[0], CPolygon(0, 1, 2, 3));
	const auto* model = static_cast<const PolygonObject*>(crate);
	ASSERT_EQ(model->GetPointCount(), 8);
	EXPECT_EQ(model->GetPointR()[6], Vector(1, 1, 1));
	ASSERT_EQ(model->GetPolygonCount(), 3);
	EXPECT_EQ(model->GetPolygonR()[0], CPolygon(0, 1, 2));
	EXPECT_EQ(model->GetPolygonR()[1], CPolygon(0, 2, 3));
	EXPECT_EQ(model->GetPolygonR()[2], CPolygon(4, 5, 6, 7));

	// Tag data, tracks and caches.
	const UVWStruct& uv = static_cast<const UVWTag*>(ground->GetTag(Tuvw))->Get(0);
	EXPECT_EQ(std::vector<Vector>({uv.a, uv.b, uv.c, uv.d}),
		std::vector<Vector>({Vector(0, 0, 0), Vector(1, 0, 0), Vector(1, 1, 0), Vector(0, 1, 0)}));
	EXPECT_EQ(static_cast<const SelectionTag*>(ground->GetTag(Tpolygonselection))->GetBaseSelect()->GetCount(), 1);
	const BaseSelect* corners = static_cast<const SelectionTag*>(ground->GetTag(Tpointselection))->GetBaseSelect();
	EXPECT_EQ(corners->GetCount(), 3);
	EXPECT_FALSE(corners->IsSelected(1));
	EXPECT_EQ(static_cast<const TextureTag*>(ground->GetTag(Ttexture, 1))->GetMl(),
		Matrix(Vector(0, 0.5, 0), Vector(5, 0, 0), Vector(0, 0, 5), Vector(0, -1, 0)));
	const BaseObject* ball = objectAt(doc, {"Set", "Ball"});
	const std::vector<Keyframe>& position = ball->GetTracks().position.GetKeys();
	ASSERT_EQ(position.size(), 3u);
	EXPECT_EQ(position[1].time, BaseTime(10, 25));
	EXPECT_EQ(position[2].value, Vector(2, 0.5, 3));
	EXPECT_EQ(ball->GetTracks().rotation.GetKeys().at(1).value, Vector(M_PI, 0, 0));
	EXPECT_TRUE(ball->GetTracks().scale.IsEmpty());
	EXPECT_EQ(ball->GetCache(), nullptr);
	const BaseObject* boxCache = objectAt(doc, {"Set", "Rounded Box"})->GetCache();
	ASSERT_NE(boxCache, nullptr);
	EXPECT_EQ(static_cast<const PolygonObject*>(boxCache)->GetPointCount(), 4);
	EXPECT_NE(boxCache->GetTag(Tuvw), nullptr);
	const BaseObject* flag = objectAt(doc, {"Set", "Flag"})->GetDeformCache();
	ASSERT_NE(flag, nullptr);
	EXPECT_EQ(static_cast<const PolygonObject*>(flag)->GetPointR()[1], Vector(1, 0, 0.25));
}

} // namespace

TEST(DocumentFile, TheExampleReadsAndSurvivesASaveAndALoad)
{
	const DocPtr doc = loadExample();
	{
		SCOPED_TRACE("as read");
		expectExample(*doc);
	}
	const std::string saved = WriteDocumentText(*doc);
	VelornTest::TempDir dir;
	const Filename file(String(dir.file("again.json")));
	SaveDocumentFile(*doc, file);
	const DocPtr again(LoadDocumentFile(file));
	EXPECT_EQ(WriteDocumentText(*again), saved);
	{
		SCOPED_TRACE("saved and loaded");
		expectExample(*again);
	}

	// The caches the host builds for a render (the ball's) are not written.
	ASSERT_TRUE(again->ExecutePasses(nullptr, false, false, true, 0));
	EXPECT_EQ(WriteDocumentText(*again), saved);
}

// Without a path and name in the file, they are those of the file.
TEST(DocumentFile, ModelCornersAtOnePositionShareAPoint)
{
	// Two entries of the file at one position, one of them written -0, are
	// one point.
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("m.obj"), "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 1 1 -0\nv 0 1 0\nf 1 2 3\nf 1 4 5\n");
	const DocPtr doc = read(R"({"version": 1, "objects": [{"type": 5100, "model": "m.obj"}]})", dir.file("scene.json"));
	const auto* model = static_cast<const PolygonObject*>(doc->GetFirstObject());
	ASSERT_EQ(model->GetPointCount(), 4);
	EXPECT_EQ(model->GetPolygonR()[1], CPolygon(0, 2, 3));
}

TEST(DocumentFile, PathAndNameDefaultToTheFiles)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("doc.json"), R"({"version": 1})");
	const DocPtr loaded(LoadDocumentFile(Filename(String(dir.file("doc.json")))));
	EXPECT_EQ(loaded->GetDocumentPath(), Filename(String(dir.path())));
	EXPECT_EQ(loaded->GetDocumentName(), Filename("doc.json"));
}

TEST(DocumentFile, MaterialLinksFindTheirOwnShadersFirst)
{
	// A copy's shaders carry the names of the original's.
	const DocPtr doc = loadExample();
	BaseMaterial* original = doc->GetFirstMaterial();
	BaseMaterial* copy = original->GetClone();
	doc->InsertMaterial(copy, original);
	const DocPtr again = read(WriteDocumentText(*doc));
	const BaseMaterial* reloadedCopy = again->GetFirstMaterial()->GetNext();
	const BaseShader* linked = static_cast<const BaseShader*>(reloadedCopy->GetDataInstance()->GetLink(MATERIAL_COLOR_SHADER));
	ASSERT_NE(linked, nullptr);
	EXPECT_EQ(linked->GetDocument(), again.get());
	EXPECT_EQ(linked, reloadedCopy->GetFirstShader()->GetNext());
}

TEST(DocumentFile, SelectedObjectsAndTags)
{
	// One object and one tag selected; then a second tag as well.
	const std::string text = R"({"version": 1, "objects": [
		{"type": 5140, "name": "Null", "children": [
			{"type": 5140, "name": "Inner", "active": true, "tags": [
				{"type": 5612, "name": "Phong"},
				{"type": 5616, "name": "Texture", "active": true}]}]},
		{"type": 5140, "name": "Other", "active": false, "tags": [{"type": 5612, "name": "Second"}]}]})";
	DocPtr doc = read(text);
	ASSERT_NE(doc->GetActiveObject(), nullptr);
	EXPECT_EQ(doc->GetActiveObject()->GetName(), String("Inner"));
	ASSERT_NE(doc->GetActiveTag(), nullptr);
	EXPECT_EQ(doc->GetActiveTag()->GetName(), String("Texture"));

	// What is saved reads back the same, with the marks only where set.
	const std::string written = WriteDocumentText(*doc);
	size_t marks = 0;
	const std::string mark = "\"active\": true";
	for(size_t at = written.find(mark); at != std::string::npos; at = written.find(mark, at + 1))
		++marks;
	EXPECT_EQ(marks, 2u) << written;
	EXPECT_EQ(written.find("\"active\": false"), std::string::npos);
	EXPECT_EQ(WriteDocumentText(*read(written)), written);

	// Two selected tags, or two objects, make no single one.
	objectAt(*doc, {"Other"})->GetFirstTag()->SetBit(BIT_ACTIVE);
	objectAt(*doc, {"Null"})->SetBit(BIT_ACTIVE);
	EXPECT_EQ(doc->GetActiveTag(), nullptr);
	EXPECT_EQ(doc->GetActiveObject(), nullptr);
	AtomArray tags;
	doc->GetActiveTags(tags);
	ASSERT_EQ(tags.GetCount(), 2);
	EXPECT_EQ(static_cast<BaseTag*>(tags.GetIndex(0))->GetName(), String("Texture"));
	AtomArray objects;
	doc->GetActiveObjects(objects);
	ASSERT_EQ(objects.GetCount(), 2);
	EXPECT_EQ(static_cast<BaseObject*>(objects.GetIndex(0))->GetName(), String("Null"));

	EXPECT_EQ(failure(R"({"version": 1, "objects": [{"type": 5140, "tags": [{"type": 5612, "active": 1}]}]})"),
		"scene.json: objects[0].tags[0].active: expected true or false");
}

TEST(DocumentFile, WrittenText)
{
	// The unit is the host's preference, which earlier documents may have set.
	ResetWorldPreferences();
	BaseDocument doc;
	doc.SetFps(24);
	BaseObject* cube = BaseObject::Alloc(Ocube);
	cube->SetName("Box");
	cube->GetDataInstance()->SetFloat(1100, 0.5);
	doc.InsertObject(cube, nullptr, nullptr);
	EXPECT_EQ(WriteDocumentText(doc), "{\n"
		"\t\"version\": 1,\n"
		"\t\"name\": \"\",\n"
		"\t\"path\": \"\",\n"
		"\t\"unit\": \"cm\",\n"
		"\t\"fps\": 24,\n"
		"\t\"time\": [\n\t\t0.0,\n\t\t1.0\n\t],\n"
		"\t\"layers\": [],\n"
		"\t\"materials\": [],\n"
		"\t\"objects\": [\n"
		"\t\t{\n"
		"\t\t\t\"type\": 5159,\n"
		"\t\t\t\"name\": \"Box\",\n"
		"\t\t\t\"params\": [\n"
		"\t\t\t\t{\n"
		"\t\t\t\t\t\"id\": 1100,\n"
		"\t\t\t\t\t\"type\": \"real\",\n"
		"\t\t\t\t\t\"value\": 0.5\n"
		"\t\t\t\t}\n"
		"\t\t\t]\n"
		"\t\t}\n"
		"\t],\n"
		"\t\"render\": {\n"
		"\t\t\"name\": \"\",\n"
		// New render data holds the host's output size.
		"\t\t\"params\": [\n"
		"\t\t\t{\n\t\t\t\t\"id\": 5008,\n\t\t\t\t\"type\": \"long\",\n\t\t\t\t\"value\": 800\n\t\t\t},\n"
		"\t\t\t{\n\t\t\t\t\"id\": 5009,\n\t\t\t\t\"type\": \"long\",\n\t\t\t\t\"value\": 600\n\t\t\t}\n"
		"\t\t],\n"
		"\t\t\"videoposts\": []\n"
		"\t}\n"
		"}\n");
}

TEST(DocumentFile, DefaultsFirstThenFileValues)
{
	int runs = 0;
	RegisterNodeDefaults(Ocube, [&runs](BaseList2D& node) {
		++runs;
		node.GetDataInstance()->SetFloat(1100, 1.0);
		node.GetDataInstance()->SetString(1101, "from defaults");
	});
	const DocPtr doc = read(R"({"version": 1, "objects": [
		{"type": 5159, "name": "A", "params": [{"id": 1100, "type": "real", "value": 2.5}]},
		{"type": 5159, "name": "B"},
		{"type": 5140, "name": "C", "tags": [{"type": 5636}]}]})");
	RegisterNodeDefaults(Ocube, NodeDefaults());
	EXPECT_EQ(runs, 2);
	const BaseContainer* a = objectAt(*doc, {"A"})->GetDataInstance();
	EXPECT_EQ(a->GetFloat(1100), 2.5);
	EXPECT_EQ(a->GetString(1101), String("from defaults"));
	EXPECT_EQ(objectAt(*doc, {"B"})->GetDataInstance()->GetFloat(1100), 1.0);
	EXPECT_EQ(objectAt(*doc, {"C"})->GetDataInstance()->GetCount(), 0);
	// A default of the host's own: a motion blur tag blurs over the whole exposure.
	EXPECT_EQ(objectAt(*doc, {"C"})->GetFirstTag()->GetDataInstance()->GetFloat(MOTIONBLURTAG_STRENGTH), 1.0);
	// Removed defaults no longer run.
	read(R"({"version": 1, "objects": [{"type": 5159}]})");
	EXPECT_EQ(runs, 2);
}

TEST(DocumentFile, BadDocuments)
{
	VelornTest::TempDir dir;
	const std::string inDir = dir.file("bad.json");
	const std::string obj = R"({"version": 1, "objects": [)";
	const struct
	{
		std::string text;
		std::string message;
	} cases[] = {
		{"hello", "scene.json:1:1: not valid JSON"},
		{"{\n\t\"version\": 1,\n\t\"fps\": 25,,\n}", "scene.json:3:12: not valid JSON"},
		{"[]", "scene.json: expected an object"},
		{"{}", "scene.json: missing key 'version'"},
		{R"({"version": 2})", "scene.json: version: unsupported version 2; this host reads version 1"},
		{R"({"version": 1, "colour": 1})", "scene.json: unknown key 'colour'"},
		{R"({"version": 1, "fps": "25"})", "scene.json: fps: expected an integer"},
		{R"({"version": 1, "fps": 0})", "scene.json: fps: the frame rate must be at least 1"},
		{R"({"version": 1, "time": [1, 0]})", "scene.json: time[1]: the denominator must be positive"},
		{R"({"version": 1, "unit": "inch"})", "scene.json: unit: unknown value 'inch' (one of km, m, cm, mm)"},
		{R"({"version": 1, "camera": "Cam"})", "scene.json: camera: no object named 'Cam'"},
		{obj + R"({"name": "A"}]})", "scene.json: objects[0]: missing key 'type'"},
		{obj + R"({"type": 5140, "matrix": {"off": [0, 0], "v1": [1, 0, 0], "v2": [0, 1, 0], "v3": [0, 0, 1]}}]})",
			"scene.json: objects[0].matrix.off: expected an array of three numbers"},
		{obj + R"({"type": 5140, "layer": "L"}]})", "scene.json: objects[0].layer: no layer named 'L'"},
		{R"({"version": 1, "materials": [{"type": 5703}, {"type": 5703, "layer": "L"}]})",
			"scene.json: materials[1].layer: no layer named 'L'"},
		{R"({"version": 1, "materials": [{"type": 5703, "active": 1}]})",
			"scene.json: materials[0].active: expected true or false"},
		{R"({"version": 1, "materials": [{"type": 5703, "selected": true}]})",
			"scene.json: materials[0]: unknown key 'selected'"},
		{obj + R"({"type": 5140, "render_mode": "maybe"}]})",
			"scene.json: objects[0].render_mode: unknown value 'maybe' (one of on, off, parent)"},
		{obj + R"({"type": 5140, "params": [{"id": 1, "type": "colour", "value": 1}]}]})",
			"scene.json: objects[0].params[0].type: unknown parameter type 'colour' (one of bool, long, real, vector, "
			"string, filename, time, link, container, none)"},
		{obj + R"({"type": 5140, "params": [{"id": 1, "type": "long", "value": 1.5}]}]})",
			"scene.json: objects[0].params[0].value: expected an integer"},
		{obj + R"({"type": 5140, "params": [{"id": 1, "type": "long", "value": 3000000000}]}]})",
			"scene.json: objects[0].params[0].value: the integer 3000000000 does not fit 32 bits"},
		{obj + R"({"type": 5140, "params": [{"id": 1, "type": "bool", "value": 1}]}]})",
			"scene.json: objects[0].params[0].value: expected true or false"},
		{obj + R"({"type": 5140, "params": [{"id": 1, "type": "long", "value": 1}, {"id": 1, "type": "long", "value": 2}]}]})",
			"scene.json: objects[0].params[1].id: parameter 1 is given twice"},
		{obj + R"({"type": 5140, "points": [[0, 0, 0]]}]})",
			"scene.json: objects[0]: points, polygons and model are only for polygon objects (type 5100)"},
		{obj + R"({"type": 5100, "points": [[0, 0, 0]], "model": "a.obj"}]})",
			"scene.json: objects[0]: a polygon object has either a model or points and polygons, not both"},
		{obj + R"({"type": 5100, "points": [[0, 0, 0], [1, 0, 0], [0, 1, 0]], "polygons": [[0, 1, 3]]}]})",
			"scene.json: objects[0].polygons[0][2]: point index 3 is out of range (3 points)"},
		{obj + R"({"type": 5100, "polygons": [[0, 1]]}]})",
			"scene.json: objects[0].polygons[0]: expected an array of three or four point indices"},
		{R"({"version": 1, "render": {"videoposts": [{"type": 1020896, "enabled": "no"}]}})",
			"scene.json: render.videoposts[0].enabled: expected true or false"},
		{R"({"version": 1, "render": {"videoposts": [{"type": 77}]}})",
			"scene.json: render.videoposts[0].type: unknown video post type 77: neither a type of the host nor a "
			"registered plug-in"},
		{obj + R"({"type": 5100, "tags": [{"type": 1020896}]}]})",
			"scene.json: objects[0].tags[0].type: unknown tag type 1020896: neither a type of the host nor a "
			"registered plug-in"},
		{R"({"version": 1, "materials": [{"type": 5703, "shaders": [{"type": 5832}, {"type": 5832, "children": [{"type": 77}]}]}]})",
			"scene.json: materials[0].shaders[1].children[0].type: unknown shader type 77: neither a type of the host "
			"nor a registered plug-in"},
		{obj + R"({"type": 5100, "tags": [{"type": 5671, "uvw": [[[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 0], [1, 0], [1, 1]]]}]}]})",
			"scene.json: objects[0].tags[0].uvw[1]: expected four [u, v] pairs"},
		{obj + R"({"type": 5100, "tags": [{"type": 5671, "uvw": [[[0, 0], [1, 0], [1, 1, 0], [0, 1]]]}]}]})",
			"scene.json: objects[0].tags[0].uvw[0][2]: expected [u, v]"},
		{obj + R"({"type": 5100, "tags": [{"type": 5616, "uvw": []}]}]})",
			"scene.json: objects[0].tags[0]: uvw is only for tags of type 5671"},
		{obj + R"({"type": 5100, "tags": [{"type": 5671, "selection": []}]}]})",
			"scene.json: objects[0].tags[0]: selection is only for tags of type 5673 or 5674"},
		{obj + R"({"type": 5100, "tags": [{"type": 5673, "selection": [1, [7, 2]]}]}]})",
			"scene.json: objects[0].tags[0].selection[1]: the range [7, 2] ends before it starts"},
		{obj + R"({"type": 5100, "tags": [{"type": 5674, "selection": [0, [-2, 3]]}]}]})",
			"scene.json: objects[0].tags[0].selection[1]: the index -2 is negative"},
		{obj + R"({"type": 5100, "tags": [{"type": 5674, "selection": ["3"]}]}]})",
			"scene.json: objects[0].tags[0].selection[0]: expected an index or [min, max]"},
		{obj + R"({"type": 5140, "tracks": {"rotation": [{"time": [0, 1], "value": [0, 0, 0]},
			{"time": [1, 2], "value": [1, 0, 0]}, {"time": [2, 4], "value": [2, 0, 0]}]}}]})",
			"scene.json: objects[0].tracks.rotation[2].time: a key must come later than the key before it"},
		{obj + R"({"type": 5140, "tracks": {"scale": [{"time": [3, 1], "value": [1, 1, 1]}, {"time": [1, 1], "value": [1, 1, 1]}]}}]})",
			"scene.json: objects[0].tracks.scale[1].time: a key must come later than the key before it"},
		{obj + R"({"type": 5140, "children": [{"type": 5159, "deform_cache": {"type": 77}}]}]})",
			"scene.json: objects[0].children[0].deform_cache.type: unknown object type 77: neither a type of the host "
			"nor a registered plug-in"},
		// Objects in caches are no link targets.
		{obj + R"({"type": 5159, "cache": {"type": 5100, "name": "Inner"}, "params": [{"id": 1, "type": "link", "value": "Inner"}]}]})",
			"scene.json: objects[0].params[0].value: the link names 'Inner', but there is no object, material, shader or "
			"layer of that name"},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.text);
		EXPECT_EQ(failure(t.text), t.message);
	}

	const std::string missing = obj + R"({"type": 5100, "model": "gone.obj"}]})";
	EXPECT_EQ(failure(missing, inDir), inDir + ": objects[0].model: no model file '" + dir.file("gone.obj") + "'");
	VelornTest::writeFile(dir.file("broken.obj"), "v 1 2\n");
	EXPECT_EQ(failure(obj + R"({"type": 5100, "model": "broken.obj"}]})", inDir),
		inDir + ": objects[0].model: cannot read model file '" + dir.file("broken.obj") +
			"': Parse error while reading position on line 1");
}
